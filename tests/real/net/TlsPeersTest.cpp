// TLS against OpenSSL's own programs.
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "quorix/net/mSocketSSL.h"
#include "testkit/Certificates.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/RunUntil.h"
#include "tests/real/net/Peer.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::real {
namespace {

using testing_net::Log;
using testing_net::SocketRecorder;
using namespace testkit;

const Log kHandshakeFailed{"error:10053:Software caused connection abort."};

class TlsPeers : public ::testing::Test {
protected:
    std::shared_ptr<SocketRecorder> Client(const Peer& server) {
        auto made = SocketRecorder::Create();
        made->socket->SSLEnable(true);
        made->socket->TimeOut(30000);  // a busy machine's server takes its time
        made->socket->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
        made->socket->RemoteHost(u"localhost");
        made->socket->RemotePort(server.Port());
        return made;
    }

    // Answers each line with its characters reversed.
    std::unique_ptr<Peer> Server(const Identity& identity, const std::vector<std::string>& options = {}) {
        int port = FreePort();
        std::vector<std::string> command = {"openssl", "s_server", "-rev", "-accept",
                                            "127.0.0.1:" + std::to_string(port)};
        command.insert(command.end(), {"-cert", identity.SaveCertificate(folder.Path()), "-key",
                                       identity.SaveKey(folder.Path())});
        command.insert(command.end(), options.begin(), options.end());
        return std::make_unique<Peer>(folder, port, command);
    }

    TemporaryFolder folder;
    Identity authority = Authority("The authority of these tests");
    Identity good = IssuedBy(authority, {});
};

// The most memory that the process held since the last call.
long TakePeakKilobytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") {
    }
    long peak = 0;
    status >> peak;
    std::ofstream("/proc/self/clear_refs") << 5;
    return peak;
}

// 64 MB of lines both ways, while the server stands still at first. Some ciphers of TLS 1.2 encrypt several
// records at a time, and what was begun must be gone on with.
TEST_F(TlsPeers, EveryLineReturnsInOrderUnderAnyCipherAndWaitsInBoundedMemory) {
    constexpr std::size_t kTotal = 64'000'000;
    std::string text;
    std::string reversed;
    for (int i = 0; text.size() < kTotal; ++i) {
        std::string line = std::string(2000, '.') + std::to_string(i);
        text += line + '\n';
        reversed += std::string(line.rbegin(), line.rend()) + '\n';
    }
    const std::vector<std::vector<std::string>> rows = {
        {"-tls1_3"}, {"-tls1_2", "-no_etm", "-cipher", "ECDHE-ECDSA-AES128-SHA"}};
    for (const auto& options : rows) {
        auto server = Server(good, options);
        auto client = Client(*server);
        client->socket->Connect();
        EXPECT_EQ(client->TakeLog(), Log{"connect"}) << options[0];
        EXPECT_EQ(client->socket->SSLTrusted(), 0);
        EXPECT_EQ(client->socket->SSLSubject(), u"CN=localhost");
        std::size_t received = 0;
        bool same = true;
        client->socket->LineSeparator(u"\n");
        client->on["line"] = [&] {
            const std::string line = client->TakeLog().back().substr(5) + '\n';
            same = same && std::string_view(reversed).substr(received, line.size()) == line;
            received += line.size();
        };
        client->on["data"] = [&] { client->log.clear(), client->received.clear(); };  // the start of a line
        TakePeakKilobytes();
        [[maybe_unused]] const long before = TakePeakKilobytes();  // what it holds now
        server->Signal(SIGSTOP);
        client->socket->SendBytes(text);
        server->Signal(SIGCONT);
        EXPECT_TRUE(RunUntil([&] { return !same || received == text.size(); }, 120)) << options[0];
        EXPECT_TRUE(same) << options[0] << " up to " << received;
#ifndef QUORIX_SANITIZED
        // The queue holds one text at most; the rest is small change.
        EXPECT_LT(TakePeakKilobytes() - before, static_cast<long>(kTotal / 1024) + 32768);
#endif
        server->Signal(SIGKILL);
        EXPECT_TRUE(RunUntil([&] { return !client->log.empty() && client->log.back() == "closed"; }));
    }
    auto older = Server(good, {"-tls1_1", "-cipher", "ALL:@SECLEVEL=0"});
    auto client = Client(*older);
    client->socket->Connect();
    EXPECT_EQ(client->log, kHandshakeFailed);
}

// `openssl s_client` verifies what it meets; then somebody comes who does not speak TLS.
TEST_F(TlsPeers, AreServedAndGarbageIsDropped) {
    auto listener = SocketRecorder::Create();
    auto server = SocketRecorder::Create();
    server->socket->SSLEnable(true);
    server->socket->SSLServerCertificate(TextFromUtf8(good.SaveCertificate(folder.Path())));
    server->socket->SSLServerKey(TextFromUtf8(good.SaveKey(folder.Path())));
    server->socket->TimeOut(60000);  // it is the plain text that ends the last, not the clock
    listener->on["request"] = [&] {
        server->socket->Accept(AcceptConnection(listener->socket->SocketHandle()));
    };
    listener->socket->Listen();
    server->on["data"] = [&] {
        server->socket->SendData(u"welcome");
        server->socket->Disconnect();
    };
    const std::string port = std::to_string(listener->socket->LocalPort());
    const std::string log = folder.Path() / "visitor.log";
    auto visit = [&](std::vector<std::string> command) {
        std::filesystem::remove(log);
        server->received.clear();
        server->log.clear();
        Process visitor({std::move(command), {}, folder.Path(), log, "", folder.Write("input", "hello\n")});
        EXPECT_TRUE(RunUntil([&] { return !visitor.Running(); }));
    };
    for (const char* version : {"-tls1_2", "-tls1_3"}) {
        visit({"openssl", "s_client", "-quiet", "-connect", "127.0.0.1:" + port, version, "-CAfile",
               authority.SaveCertificate(folder.Path()), "-verify_return_error", "-verify_hostname",
               "localhost"});
        EXPECT_EQ(server->received, "hello\n") << version << folder.Read("visitor.log");
        EXPECT_NE(folder.Read("visitor.log").find("welcome"), std::string::npos);
    }
    visit({"bash", "-c", "exec 3<>/dev/tcp/127.0.0.1/" + port + "; echo GET / HTTP/1.0 >&3; cat <&3"});
    EXPECT_EQ(server->log, kHandshakeFailed);
    EXPECT_EQ(server->socket->State(), sockClosed);
}

}  // namespace
}  // namespace quorix::real
