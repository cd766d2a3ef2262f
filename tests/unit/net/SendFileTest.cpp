#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "quorix/base/AutomationError.h"
#include "testkit/DeterministicEnvironment.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

class SendFile : public ::testing::Test {
protected:
    SendFile() : path(std::filesystem::temp_directory_path() / "quorix-send-file-\u00E9.bin") {
        for (int i = 0; i < 12003; ++i) contents += static_cast<char>(i);
        std::ofstream(path, std::ios::binary) << contents;
        client = SocketRecorder::Connecting();
        environment.DoEvents();
        client->TakeLog();
    }
    ~SendFile() override { std::filesystem::remove(path); }

    testkit::DeterministicEnvironment environment;
    std::filesystem::path path;
    std::string contents;
    std::shared_ptr<SocketRecorder> client;
};

TEST_F(SendFile, SendsBlocksOf5000BytesAndDeliversEventsInBetween) {
    std::vector<std::size_t> heard;
    client->on["data"] = [&] {
        heard.push_back(environment.Peer().Heard().size());
        if (heard.size() < 2) environment.Peer().Say("more");
    };
    environment.Peer().Say("first");
    client->socket->SendFile(path.u16string());
    EXPECT_EQ(environment.Peer().Heard(), contents);
    EXPECT_EQ(heard, (std::vector<std::size_t>{5000, 5000}));
}

TEST_F(SendFile, EndsWhenAHandlerDisconnects) {
    client->on["data"] = [&] { client->socket->Disconnect(); };
    environment.Peer().Say("stop");
    client->socket->SendFile(path.u16string());
    EXPECT_EQ(environment.Peer().Heard(), contents.substr(0, 5000));
}

TEST_F(SendFile, WaitsInTheQueueLikeAnythingElse) {
    environment.BlockWrites(true);
    client->socket->SendFile(path.u16string());
    client->socket->SendData(u"behind");
    environment.BlockWrites(false);
    environment.DoEvents();
    EXPECT_EQ(environment.Peer().Heard(), contents + "behind");
    EXPECT_EQ(client->log, Log{"sent"});
}

TEST_F(SendFile, AFileThatCannotBeOpenedIsError53) {
    std::filesystem::path folder = std::filesystem::temp_directory_path();
    for (const std::filesystem::path& wrong : {folder / "quorix-no-such-file", folder}) {
        try {
            client->socket->SendFile(wrong.u16string());
            ADD_FAILURE() << wrong;
        } catch (const AutomationError& error) {
            EXPECT_EQ(error.Number(), ERR_FileNotFound);
        }
    }
    EXPECT_EQ(environment.Peer().Heard(), "");
}

}  // namespace
}  // namespace quorix::testing_net
