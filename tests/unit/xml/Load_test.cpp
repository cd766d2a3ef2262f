// What loads, what does not, and what the text looks like afterwards.
#include <gtest/gtest.h>

#include "quorix/xml/XmlDocument.h"
#include "quorix/xml/XmlLimits.h"

namespace quorix {

namespace {

String Repeated(StringView piece, int count) {
    String text;
    for (int i = 0; i < count; ++i) text += piece;
    return text;
}

String Nested(int depth) { return Repeated(u"<a>", depth) + Repeated(u"</a>", depth); }

String WithAttributes(int count) {
    String text = u"<a";
    for (int i = 0; i < count; ++i) text += u" a" + ToString(i) + u"=''";
    return text + u"/>";
}

bool Loads(StringView text) { return XmlDocument::Create()->Load(text); }

String Reloaded(StringView text) {
    auto document = XmlDocument::Create();
    EXPECT_TRUE(document->Load(text));
    return document->Xml();
}

TEST(XmlForm, IsTheOneSerializedForm) {
    struct Form {
        const char16_t* source;
        const char16_t* serialized;
    };
    for (const Form& form :
         {Form{u"<a z='1' xmlns=\"n\" b='2' xmlns:c='m' d=''></a>",
               uR"(<a z="1" xmlns="n" b="2" xmlns:c="m" d=""/>)"},
          {u"<a b='&lt;&amp;&gt;&quot;&apos;'/>", u"<a b=\"&lt;&amp;&gt;&quot;'\"/>"},
          {u"<stream:features><p:q r:s='t'/></stream:features>",
           u"<stream:features><p:q r:s=\"t\"/></stream:features>"},
          {u"<a>&lt;&amp;&gt;\"'&#65;&#x42;</a>", u"<a>&lt;&amp;&gt;\"'AB</a>"},
          {u"<a>1 <![CDATA[<&>]]> 2</a>", u"<a>1 <![CDATA[<&>]]> 2</a>"},
          {u"<a>x<!-- c --><?t d?>y<?e?></a>", u"<a>x<!-- c --><?t d?>y<?e?></a>"},
          {u"<a>1\r\n2\u0080\u00e9\u20ac\U0001F600\xfffd</a>",
           u"<a>1\n2\u0080\u00e9\u20ac\U0001F600\xfffd</a>"},
          {u" <a> <b> </b>\r\n\t<b/> </a>\n", u"<a><b> </b><b/></a>"},
          {u"<a> <b>fett</b> <i>und</i> mehr</a>", u"<a> <b>fett</b> <i>und</i> mehr</a>"},
          {u"<a b='1&#13;&#9;&#10;2'>3&#13;4</a>", u"<a b=\"1&#13;&#9;&#10;2\">3&#13;4</a>"},
          {u"<a> <!-- c --> </a>", u"<a> <!-- c --> </a>"},
          {u"<a><![CDATA[ ]]> <b/></a>", u"<a><![CDATA[ ]]> <b/></a>"},
          {u"<?xml version=\"1.0\" encoding=\"ISO-8859-5\"?>\n<a>\u00e9</a>",
           u"<?xml version=\"1.0\" encoding=\"ISO-8859-5\"?><a>\u00e9</a>"},
          {u"<?xml\tversion='1.0' encoding='UTF-16' standalone='yes' ?><a/>",
           u"<?xml version='1.0' encoding='UTF-16' standalone='yes' ?><a/>"},
          {u"<?xml-style href='x'?><!--c--><a/><?end?>", u"<?xml-style href='x'?><!--c--><a/><?end?>"}}) {
        EXPECT_EQ(Reloaded(form.source), form.serialized);
        EXPECT_EQ(Reloaded(form.serialized), form.serialized);
    }
}

TEST(XmlLoad, RefusesWhatIsNotWellFormedAndIsEmptyThen) {
    const StringView bad[] = {u"",
                              u"text",
                              u"<a",
                              u"<a><b></a></b>",
                              u"<a/><b/>",
                              u"<a b='1' b='2'/>",
                              u"<a>&nbsp;</a>",
                              u"<a>&#0;</a>",
                              u"<a>\xdc00\xd800</a>",
                              StringView(u"<a/>\0", 5),
                              StringView(u"<a>\0</a>", 8),
                              u"<!DOCTYPE a SYSTEM '/etc/passwd'><a/>",
                              u"<!DOCTYPE b [<!ENTITY x 'aa'><!ENTITY y '&x;&x;'>]><b>&y;&y;</b>"};
    ::testing::internal::CaptureStderr();
    auto document = XmlDocument::Create();
    for (StringView text : bad) {
        ASSERT_TRUE(document->Load(u"<before/>"));
        EXPECT_FALSE(document->Load(text)) << ::testing::PrintToString(text);
        EXPECT_FALSE(document->Root());
        EXPECT_EQ(document->Xml(), u"");
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(XmlLoad, DepthIsBounded) {
    EXPECT_TRUE(Loads(Nested(kMaxXmlDepth)));
    EXPECT_FALSE(Loads(Nested(kMaxXmlDepth + 1)));
    EXPECT_FALSE(Loads(Repeated(u"<a>", 1000000)));
}

// Each would take minutes if the cost grew with the square of the number.
TEST(XmlLoad, AttributesAndNamesMayBeMany) {
    EXPECT_TRUE(Loads(WithAttributes(100000)));
    String names = u"<r>";
    for (int i = 0; i < 100000; ++i) names += Concat({u"<n", ToString(i), u"/>"});
    EXPECT_TRUE(Loads(names + u"</r>"));
}

TEST(XmlLoad, LongValuesLoadWhole) {
    constexpr std::size_t kLong = 12U << 20U;
    auto document = XmlDocument::Create();
    ASSERT_TRUE(
        document->Load(Concat({u"<a b='", String(kLong, u'x'), u"'>", String(kLong, u'\u00e9'), u"</a>"})));
    EXPECT_EQ(document->Root().Attribute(u"b").size(), kLong);
    EXPECT_EQ(document->Root().Text(), String(kLong, u'\u00e9'));
}

}  // namespace

}  // namespace quorix
