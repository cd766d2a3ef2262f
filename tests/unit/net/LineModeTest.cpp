#include <gtest/gtest.h>

#include "quorix/net/LineBuffer.h"
#include "testkit/DeterministicEnvironment.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

struct LineCase {
    const char* name;
    const char16_t* separator;
    std::vector<std::string> reads;
    Log events;
};

class LineMode : public ::testing::TestWithParam<LineCase> {
public:
    static std::shared_ptr<SocketRecorder> Connected(testkit::DeterministicEnvironment& environment,
                                                     StringView separator) {
        auto client = SocketRecorder::Connecting();
        client->socket->LineSeparator(separator);
        environment.DoEvents();
        client->TakeLog();
        return client;
    }
};

TEST_P(LineMode, CutsWhatArrives) {
    testkit::DeterministicEnvironment environment;
    auto client = Connected(environment, GetParam().separator);
    for (const std::string& read : GetParam().reads) environment.Peer().Say(read);
    environment.DoEvents();
    EXPECT_EQ(client->log, GetParam().events);
}

const std::string kNul(1, '\0');

INSTANTIATE_TEST_SUITE_P(
    Reads, LineMode,
    ::testing::Values(
        LineCase{"OneLine", u"\n", {"abc\n"}, {"line:abc"}},
        LineCase{"SeveralAndEmptyLines", u"\n", {"a\n\nb\n"}, {"line:a", "line:", "line:b"}},
        LineCase{"TheRestIsDataAndStaysPending",
                 u"\n",
                 {"a\nbc", "d", "e\nf"},
                 {"line:a", "data:bc", "data:d", "line:bcde", "data:f"}},
        LineCase{"ASplitSeparator", u"\r\n", {"ab\r", "\ncd\r\n"}, {"data:ab\r", "line:ab", "line:cd"}},
        LineCase{"ASeparatorThatOverlapsItself", u"aab", {"xa", "a", "ab"}, {"data:xa", "data:a", "line:xa"}},
        LineCase{"ANulCutsItsBlock", u"\n", {"ab" + kNul + "c\nd", "e\n"}, {"data:ab", "line:abe"}},
        LineCase{"ANulAtTheFront", u"\n", {kNul + "c\n", "d\n"}, {"line:d"}},
        LineCase{"BytesAbove127", u"\u00E9", {"\xC3\xA9\xE9\xFF"}, {"line:\xC3\xA9", "data:\xFF"}},
        LineCase{"ASeparatorThatNoByteIs", u"\u20AC", {"a?b"}, {"data:a?b"}}),
    [](const auto& row) { return row.param.name; });

TEST(LineModeHandlers, MaySwitchTheMode) {
    testkit::DeterministicEnvironment environment;
    auto client = LineMode::Connected(environment, u"\n");
    client->on["line"] = [&] {
        client->socket->LineSeparator(client->log.size() == 1 ? StringView(u";") : StringView());
    };
    environment.Peer().Say("a\nb;c\nd");
    environment.Peer().Say("e\n");
    environment.DoEvents();
    EXPECT_EQ(client->log, (Log{"line:a", "line:b", "data:c\nd", "data:e\n"}));
}

TEST(LineModeHandlers, MayPumpMessagesWithoutChangingTheOrder) {
    testkit::DeterministicEnvironment environment;
    auto client = LineMode::Connected(environment, u"\n");
    client->on["line"] = [&] {
        if (client->log.size() > 1) return;
        environment.Peer().Say("c\nd");
        environment.DoEvents();
    };
    environment.Peer().Say("a\nb\nb");
    environment.DoEvents();
    EXPECT_EQ(client->log, (Log{"line:a", "line:b", "line:bc", "data:d"}));
}

TEST(LineModeHandlers, ANewConnectionBeginsWithNothingPending) {
    testkit::DeterministicEnvironment environment;
    auto client = LineMode::Connected(environment, u"\n");
    client->on["line"] = [&] { client->socket->Connect(); };
    environment.Peer().Say("old");
    environment.Peer().Say(" line\nolder\nrest");
    environment.DoEvents();
    client->on.clear();
    environment.Peer(1).Say("new\n");
    environment.DoEvents();
    EXPECT_EQ(client->log, (Log{"data:old", "line:old line", "connect", "sent", "line:new"}));
}

TEST(LineBufferCost, SixtyFourMegabytesWithoutASeparatorAreSearchedOnce) {
    constexpr std::size_t kBlocks = 32 * 1024;
    const String block(2000, u'x');
    LineBuffer buffer;
    for (std::size_t i = 0; i < kBlocks; ++i) {
        buffer.Append(block);
        ASSERT_FALSE(buffer.TakeLine(u"\r\n"));
        ASSERT_EQ(buffer.TakeLeftOver().size(), block.size());
    }
    buffer.Append(u"\r\n");
    EXPECT_EQ(buffer.TakeLine(u"\r\n")->size(), kBlocks * block.size());
}

}  // namespace
}  // namespace quorix::testing_net
