#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "quorix/base/AutomationError.h"
#include "testkit/DeterministicEnvironment.h"
#include "testkit/TemporaryFolder.h"
#include "tests/unit/ErrorOf.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

TEST(SendFile, SendsBlocksOf5000BytesAndDeliversEventsInBetween) {
    testkit::DeterministicEnvironment environment;
    testkit::TemporaryFolder folder;
    std::string contents;
    for (int i = 0; i < 12003; ++i) contents += static_cast<char>(i);
    const std::filesystem::path path = folder.Path() / u"a file\u00E9";
    std::ofstream(path, std::ios::binary) << contents;
    auto client = SocketRecorder::Connecting();
    environment.DoEvents();
    for (const std::filesystem::path& wrong : {folder.Path() / "missing", folder.Path()}) {
        EXPECT_EQ(ErrorOf([&] { client->socket->SendFile(wrong.u16string()); }), ERR_FileNotFound);
    }

    std::vector<std::size_t> heard;
    client->on["data"] = [&] {
        heard.push_back(environment.Peer().Heard().size());
        if (client->received == "first") environment.Peer().Say("more");
        if (client->received == "last") client->socket->Disconnect();
    };
    environment.Peer().Say("first");
    client->socket->SendFile(path.u16string());
    EXPECT_EQ(environment.Peer().TakeHeard(), contents);
    EXPECT_EQ(heard, (std::vector<std::size_t>{5000, 5000}));
    client->received.clear();
    environment.Peer().Say("last");
    client->socket->SendFile(path.u16string());
    EXPECT_EQ(environment.Peer().Heard(), contents.substr(0, 5000));
}

}  // namespace
}  // namespace quorix::testing_net
