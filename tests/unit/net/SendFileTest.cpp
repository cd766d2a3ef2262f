#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "quorix/base/AutomationError.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/TemporaryFolder.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

class SendFile : public ::testing::Test {
protected:
    SendFile() {
        for (int i = 0; i < 12003; ++i) contents += static_cast<char>(i);
        std::ofstream(path, std::ios::binary) << contents;
        client = SocketRecorder::Connecting();
        environment.DoEvents();
        client->TakeLog();
    }

    testkit::DeterministicEnvironment environment;
    testkit::TemporaryFolder folder;
    std::filesystem::path path = folder.Path() / u"a file\u00E9";
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

TEST_F(SendFile, AFileThatCannotBeOpenedIsError53) {
    for (const std::filesystem::path& wrong : {folder.Path() / "missing", folder.Path()}) {
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
