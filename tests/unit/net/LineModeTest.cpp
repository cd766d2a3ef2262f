#include <gtest/gtest.h>

#include "quorix/net/LineBuffer.h"
#include "testkit/DeterministicEnvironment.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

class LineMode : public ::testing::Test {
protected:
    std::shared_ptr<SocketRecorder> Connected(StringView separator) {
        auto client = SocketRecorder::Connecting();
        client->socket->LineSeparator(separator);
        environment.DoEvents();
        client->TakeLog();
        return client;
    }

    testkit::DeterministicEnvironment environment;
};

TEST_F(LineMode, CutsWhatArrives) {
    struct Row {
        const char16_t* separator;
        std::vector<std::string> reads;
        Log events;
    };
    const std::string nul(1, '\0');
    for (const Row& row :
         {Row{u"\n", {"a\n\nb\n"}, {"line:a", "line:", "line:b"}},
          {u"\n", {"a\nbc", "d", "e\nf"}, {"line:a", "data:bc", "data:d", "line:bcde", "data:f"}},
          {u"\r\n", {"ab\r", "\ncd\r\n"}, {"data:ab\r", "line:ab", "line:cd"}},
          {u"aab", {"xa", "a", "ab"}, {"data:xa", "data:a", "line:xa"}},
          {u"\n", {"ab" + nul + "c\nd", nul + "e\n", "f\n"}, {"data:ab", "line:abf"}},
          {u"\u00E9", {"\xC3\xA9\xE9\xFF"}, {"line:\xC3\xA9", "data:\xFF"}},
          {u"\u20AC", {"a?b"}, {"data:a?b"}}}) {
        auto client = Connected(row.separator);
        for (const std::string& read : row.reads) environment.Peer().Say(read);
        environment.DoEvents();
        EXPECT_EQ(client->log, row.events);
    }
}

TEST_F(LineMode, ANewConnectionBeginsWithNothingPending) {
    auto client = Connected(u"\n");
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
    constexpr std::size_t kBlocks = 32768;
    const std::string block(2000, 'x');
    LineBuffer buffer;
    for (std::size_t i = 0; i < kBlocks; ++i) {
        buffer.Append(block);
        ASSERT_FALSE(buffer.TakeLine(u"\r\n"));
        ASSERT_EQ(buffer.TakeLeftOver().size(), block.size());
    }
    buffer.Append("\r\n");
    EXPECT_EQ(buffer.TakeLine(u"\r\n")->size(), kBlocks * block.size());
}

}  // namespace
}  // namespace quorix::testing_net
