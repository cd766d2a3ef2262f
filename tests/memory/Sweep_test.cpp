// Memory that runs out anywhere ends a call, a stanza or a connection, and nothing else.
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>

#include <functional>

#include "quorix/xml/XmlDocument.h"
#include "testkit/Day.h"
#include "testkit/TemporaryFolder.h"
#include "tests/memory/Allocation.h"

namespace quorix {
namespace {

using testkit::AllocationFailed;
using testkit::FailAllocation;
using testkit::LiveAllocations;

// What a run comes to, in words that are compared.
using Run = std::function<std::string()>;

// Beyond any run, so that a sweep that never ends is seen.
constexpr std::size_t kMost = 20000;

std::string WithFailure(const Run& run, std::size_t nth) {
    FailAllocation(nth);
    std::string result;
    try {
        result = run();
    } catch (const std::exception&) {
        result = "";
    }
    bool failed = AllocationFailed();
    FailAllocation(0);
    xmlResetLastError();  // which it would keep until the next one
    return failed ? "failed" : result;
}

int printed = 0;
void CountPrinted(void*, const char*, ...) { ++printed; }

// Lets each allocation of `run` fail in turn; after each, `run` works as ever.
void SweepOnce(const Run& run) {
    xmlSetGenericErrorFunc(nullptr, CountPrinted);
    const std::string usual = run();
    std::size_t nth = 1;
    while (nth < kMost && WithFailure(run, nth) == "failed") {
        ASSERT_EQ(run(), usual) << "after allocation " << nth;
        ++nth;
    }
    EXPECT_GT(nth, 100U);
    EXPECT_LT(nth, kMost);
}

// Nothing is printed, and nothing is left but `lost` blocks that a library is known to lose. What libraries
// make once and keep, they make in the first round.
void Sweep(const Run& run, std::ptrdiff_t lost = 0) {
    SweepOnce(run);
    std::ptrdiff_t before = LiveAllocations();
    SweepOnce(run);
    EXPECT_LE(LiveAllocations(), before + lost);
    EXPECT_EQ(std::exchange(printed, 0), 0);
}

TEST(MemoryRunsOut, InADocumentsLife) {
    testkit::TemporaryFolder folder;
    String path = TextFromUtf8((folder.Path() / "saved.xml").string());
    Sweep([&] {
        auto document = XmlDocument::Create();
        document->Load(u"<?xml version='1.0' encoding='UTF-8'?><r a='1'><b>eins</b> <!--c--><c/><?p q?></r>");
        XmlNode root = document->Root();
        root.SetAttribute(u"a", u"2");
        for (std::size_t length = 1; length <= 40; ++length) root.SetAttribute(String(length, u'n'), u"");
        XmlNode former = root.Child(u"b");
        root.RemoveChild(former);
        root.AppendElement(u"d").Text(u"drei");
        root.AppendChild(document->CreateElement(u"e")).AppendChild(former);
        root.RemoveAttribute(u"nn");
        document->AppendInstruction(u"target", u"data");
        document->SaveFile(path);
        auto loaded = XmlDocument::Create();
        bool read = loaded->LoadFile(path);
        auto copy = XmlDocument::CopyOf(loaded->Root());
        loaded->Root(loaded->CreateElement(u"f"));
        return (read ? "read " : "unread ") + Utf8FromText(copy->Xml()) + Utf8FromText(loaded->Xml());
    });
}

// The library loses a set of nodes, two blocks, where there is no memory for what is to hold it.
TEST(MemoryRunsOut, InAQuery) {
    auto document = XmlDocument::Create();
    document->Load(u"<r><b x='1'>eins</b><b>zwei</b><c x='1'/></r>");
    auto queries = [&] {
        std::string found;
        for (StringView xpath :
             {u"/r/b", u"//b | //c", u"//b[.='zwei' and not(@x)]", u"//b[@x=//c/@x][last()]"})
            found += std::to_string(document->Select(xpath).size());
        return found;
    };
    Sweep(queries, 28);
}

class MemoryRunsOutIn : public ::testing::TestWithParam<eMode> {};

TEST_P(MemoryRunsOutIn, ASessionsDay) {
    Sweep([] {
        testkit::Day day(GetParam());
        day.Run();
        std::string all;
        for (const std::string& line : day.events->lines) all += line + '\n';
        return all;
    });
}

INSTANTIATE_TEST_SUITE_P(Modes, MemoryRunsOutIn, ::testing::Values(KV_Classic, KV_Modern));

}  // namespace
}  // namespace quorix
