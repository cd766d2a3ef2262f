// TLS against OpenSSL's own programs.
#include <gtest/gtest.h>

#include <csignal>

#include "quorix/net/mSocketSSL.h"
#include "testkit/Certificates.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/net/Peer.h"
#include "tests/real/net/RunUntil.h"
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

TEST_F(TlsPeers, SpeakBothVersionsOfTheProtocol) {
    for (const char* version : {"-tls1_2", "-tls1_3"}) {
        auto server = Server(good, {version});
        auto client = Client(*server);
        client->socket->Connect();
        EXPECT_EQ(client->TakeLog(), Log{"connect"}) << version;
        EXPECT_EQ(client->socket->SSLTrusted(), 0);
        EXPECT_EQ(client->socket->SSLSubject(), u"CN=localhost");
        client->socket->SendData(u"stressed\n");
        ASSERT_TRUE(RunUntil([&] { return client->received == "desserts\n"; })) << client->received;
        server->Signal(SIGKILL);
        ASSERT_TRUE(RunUntil([&] { return client->log.back() == "closed"; }));
    }
}

TEST_F(TlsPeers, AnOlderVersionIsRefused) {
    auto server = Server(good, {"-tls1_1", "-cipher", "ALL:@SECLEVEL=0"});
    auto client = Client(*server);
    client->socket->Connect();
    EXPECT_EQ(client->log, kHandshakeFailed);
}

// Some ciphers of TLS 1.2 encrypt several records at a time, and what was begun must be gone on with.
TEST_F(TlsPeers, ALongTextWaitsForAStoppedServerUnderAnyCipher) {
    std::string text;
    std::string reversed;
    for (int i = 0; text.size() < 8'000'000; ++i) {
        std::string line = std::string(2000, '.') + std::to_string(i);
        text += line + '\n';
        reversed += std::string(line.rbegin(), line.rend()) + '\n';
    }
    const std::vector<std::vector<std::string>> rows = {
        {"-tls1_3"}, {"-tls1_2", "-no_etm", "-cipher", "ECDHE-ECDSA-AES128-SHA"}};
    for (const auto& options : rows) {
        auto server = Server(good, options);
        auto client = Client(*server);
        client->on["data"] = [&] { client->log.clear(); };
        client->socket->Connect();
        server->Signal(SIGSTOP);
        client->socket->SendBytes(text);
        server->Signal(SIGCONT);
        EXPECT_TRUE(RunUntil([&] { return client->received.size() == text.size(); }, 60)) << options[0];
        EXPECT_TRUE(client->received == reversed) << options[0];
    }
}

class TlsServer : public TlsPeers {
protected:
    TlsServer() {
        server->socket->SSLEnable(true);
        server->socket->SSLServerCertificate(TextFromUtf8(good.SaveCertificate(folder.Path())));
        server->socket->SSLServerKey(TextFromUtf8(good.SaveKey(folder.Path())));
        listener->on["request"] = [this] {
            server->socket->Accept(AcceptConnection(listener->socket->SocketHandle()));
        };
        listener->socket->Listen();
    }

    std::unique_ptr<Process> Visitor(std::vector<std::string> command, const std::string& says = "") {
        ProcessSetup setup;
        setup.command = std::move(command);
        setup.folder = folder.Path().string();
        setup.input = folder.Write("input", says);
        setup.log = (folder.Path() / "visitor.log").string();
        return std::make_unique<Process>(setup);
    }

    std::string Address(const char* between) const {
        return std::string("127.0.0.1") + between + std::to_string(listener->socket->LocalPort());
    }

    std::shared_ptr<SocketRecorder> listener = SocketRecorder::Create();
    std::shared_ptr<SocketRecorder> server = SocketRecorder::Create();
};

TEST_F(TlsServer, ServesAClientThatVerifiesIt) {
    std::string ca = authority.SaveCertificate(folder.Path());
    server->on["data"] = [&] {
        server->socket->SendData(u"welcome");
        server->socket->Disconnect();
    };
    for (const char* version : {"-tls1_2", "-tls1_3"}) {
        folder.Write("visitor.log", "");
        server->received.clear();
        auto visitor = Visitor({"openssl", "s_client", "-quiet", "-connect", Address(":"), version, "-CAfile",
                                ca, "-verify_return_error", "-verify_hostname", "localhost"},
                               "hello\n");
        EXPECT_TRUE(RunUntil([&] { return !visitor->Running(); })) << version;
        EXPECT_EQ(server->received, "hello\n") << folder.Read("visitor.log");
        EXPECT_NE(folder.Read("visitor.log").find("welcome"), std::string::npos);
    }
}

TEST_F(TlsServer, AVisitorThatSpeaksSomethingElseIsDropped) {
    server->socket->TimeOut(60000);  // it is the plain text that ends this, not the clock
    std::string script = "exec 3<>/dev/tcp/" + Address("/") + "; echo GET / HTTP/1.0 >&3; cat <&3";
    auto visitor = Visitor({"bash", "-c", script});
    ASSERT_TRUE(RunUntil([&] { return !visitor->Running(); }));
    EXPECT_EQ(server->log, kHandshakeFailed);
    EXPECT_EQ(server->socket->State(), sockClosed);
}

TEST_F(TlsServer, WithoutItsKeyItServesNobody) {
    server->socket->SSLServerKey(u"no/such/key");
    auto visitor = Visitor({"openssl", "s_client", "-connect", Address(":")});
    ASSERT_TRUE(RunUntil([&] { return !server->log.empty(); }));
    EXPECT_EQ(server->log, kHandshakeFailed);
}

}  // namespace
}  // namespace quorix::real
