#include <gtest/gtest.h>

#include <memory>

#include "quorix/base/CollectionElements.h"
#include "quorix/base/Jid.h"
#include "quorix/base/Number.h"
#include "quorix/base/WireText.h"
#include "tests/unit/ErrorOf.h"

namespace quorix {
namespace {

TEST(Jid, IsCutAtItsFirstSlash) {
    EXPECT_EQ(RemoveResource(u"a@b/c/d") + u" " + GetResource(u"a@b/c/d"), u"a@b c/d");
    EXPECT_EQ(RemoveResource(u"a@b") + GetResource(u"a@b"), u"a@b");
    EXPECT_EQ(RemoveResource(u"/"), u"");
}

TEST(WireText, MapsBytesOneToOneAndWhatHasNoByteToAQuestionMark) {
    String all;
    for (char16_t c = 0; c < 256; ++c) all += c;
    EXPECT_EQ(WireFromBytes(BytesFromWire(all)), all);
    EXPECT_EQ(BytesFromWire(u"a\u0100\u8BF4"), "a??");
}

TEST(Utf8, RoundTripsWholeTextsAndReplacesWhatIsNone) {
    StringView text = u"é€说\U0001F600";
    EXPECT_EQ(TextFromUtf8(Utf8FromText(text)), text);
    EXPECT_EQ(Utf8FromText(String(1, 0xD800)), "\xEF\xBF\xBD");
    for (const char* bad : {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80"}) {
        EXPECT_EQ(TextFromUtf8(bad).front(), 0xFFFD) << bad;
    }
}

TEST(Number, FromTheWireNeverFails) {
    EXPECT_EQ(WireInt16(u" -5 apples"), -5);
    EXPECT_EQ(WireInt16(u"32767"), 32767);
    EXPECT_EQ(WireInt32(u"1e3"), 1000);
    for (StringView nothing : {u"", u"abc", u"32768", u"-40000", u"inf", u"nan", u"1e999", u"--1", u"+-1"}) {
        EXPECT_EQ(WireInt16(nothing), 0) << Utf8FromText(nothing);
    }
    EXPECT_EQ(WireInt32(u"2147483648"), 0);
}

TEST(Collection, CountsFromOneFindsByKeyAlsoAfterRemovalsAndRefusesWhatIsNotThere) {
    Collection<int> numbers;
    numbers.Add(10, u"a");
    numbers.Add(20);
    numbers.Add(30, u"");
    numbers.Add(40, u"A");
    EXPECT_EQ(ErrorOf([&] { numbers.Add(50, u"A"); }), ERR_KeyInUse);
    numbers.Remove(1);
    EXPECT_EQ(numbers.Item(1), 20);
    EXPECT_EQ(numbers.Item(u""), 30);
    numbers.Remove(u"");
    EXPECT_EQ(numbers.Item(u"A"), 40);
    EXPECT_EQ(ErrorOf([&] { numbers.Remove(u"a"); }), ERR_InvalidCall);
    EXPECT_EQ(ErrorOf([&] { numbers.Item(0); }), ERR_Subscript);
    EXPECT_EQ(ErrorOf([&] { numbers.Remove(3); }), ERR_Subscript);
    EXPECT_EQ(numbers.Count(), 2);
}

}  // namespace
}  // namespace quorix
