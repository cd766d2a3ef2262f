#include "quorix/base/modUTF_8.h"

#include <gtest/gtest.h>

namespace quorix {
namespace {

TEST(Codec, EncodesAndDecodesUnitsOfOneToThreeBytes) {
    const std::pair<StringView, StringView> cases[] = {
        {u"", u""},
        {u"a<b", u"a<b"},
        {u"\u007F\u0080", u"\u007F\u00C2\u0080"},
        {u"\u07FF\u0800", u"\u00DF\u00BF\u00E0\u00A0\u0080"},
        {u"中x\u7FFF", u"\u00E4\u00B8\u00ADx\u00E7\u00BF\u00BF"}};
    for (const auto& [text, wire] : cases) {
        EXPECT_EQ(EncodeUTF8(text, false), wire);
        EXPECT_EQ(DecodeUTF8(wire, false), text);
    }
}

TEST(Codec, ReplacesWhatXmlCannotHold) {
    const String replacement = u"\u00EF\u00BF\u00BD";
    EXPECT_EQ(EncodeUTF8(StringView(u"\0\x1F<\t\r\n", 6), true), replacement + replacement + u"&lt;\t\r\n");
    EXPECT_EQ(EncodeUTF8(u"\uFFFE\u00E9\uFFFF", false), replacement + u"\u00C3\u00A9" + replacement);
    EXPECT_EQ(EncodeUTF8(u"\uFFFD", false), u"\uFFFD") << "a character from U+8000 on like any other";
}

// What the codec cannot do, it returns as it was: neither escaped nor converted.
TEST(Codec, ReturnsItsInputWhereItEnds) {
    for (StringView text : {u"é<\u8000", u"é<\U0001F600"}) {
        EXPECT_EQ(EncodeUTF8(text, true), text);
    }
    for (StringView wire :
         {u"\u00C3\u00A9\u00E8\u0080\u0080", u"&lt;\u00F0\u009F\u0098\u0080", u"\u00C3\u00A9\u00C3",
          u"\u00C3\u00A9\u00E4\u00B8", u"\u00C3\u00A9\u00FF\u0080\u0080", u"\u00C3\u0141"}) {
        EXPECT_EQ(DecodeUTF8(wire, true), wire);
    }
}

TEST(Codec, CountsItsLimitAfterEscapingAndBeforeDecoding) {
    String longest(kMaxCodecUnits, u'é');
    EXPECT_EQ(EncodeUTF8(longest, true).size(), 2 * kMaxCodecUnits);
    EXPECT_EQ(EncodeUTF8(longest + u"é", true).size(), kMaxCodecUnits + 1);
    String escaped = String(kMaxCodecUnits - 5, u'é') + u"&";
    EXPECT_EQ(EncodeUTF8(escaped, true).size(), 2 * (kMaxCodecUnits - 5) + 5);
    EXPECT_EQ(EncodeUTF8(u"x" + escaped, true), u"x" + escaped);

    String wire = String(kMaxCodecUnits - 1, u'x') + u"\u00E9";
    EXPECT_EQ(DecodeUTF8(String(kMaxCodecUnits - 5, u'x') + u"&lt;x", true).size(), kMaxCodecUnits - 3);
    EXPECT_EQ(DecodeUTF8(String(kMaxCodecUnits - 3, u'x') + u"&lt;", true).size(), kMaxCodecUnits + 1);
    EXPECT_EQ(DecodeUTF8(wire, true), wire) << "a sequence cut off at the limit";
}

TEST(Codec, CombinesWhateverFollowsALeadByte) {
    EXPECT_EQ(DecodeUTF8(u"\u00C3A", false), String(1, static_cast<char16_t>(3 * 64 + 'A' - 128)));
    EXPECT_EQ(DecodeUTF8(u"\u0080\u00BF", false), u"\u0080\u00BF");
}

TEST(Codec, EscapesFiveCharactersAndUnescapesTwice) {
    EXPECT_EQ(EncodeUTF8(u"a<b>&\"'é", true), u"a&lt;b&gt;&amp;&quot;&apos;\u00C3\u00A9");
    EXPECT_EQ(XmlUnescape(u"&lt;&amp;lt;&amp;amp;&quot;"), u"<<&amp;\"");
    EXPECT_EQ(DecodeUTF8(u"&amp;lt;", true), u"<");
}

}  // namespace
}  // namespace quorix
