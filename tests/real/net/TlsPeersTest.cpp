// TLS against OpenSSL's own programs.
#include <gtest/gtest.h>
#include <signal.h>

#include "quorix/net/mSocketSSL.h"
#include "testkit/Certificates.h"
#include "tests/real/net/Process.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_real {
namespace {

using testing_net::Log;
using testing_net::SocketRecorder;
using namespace testkit;

class TlsPeers : public ::testing::Test {
protected:
    std::shared_ptr<SocketRecorder> Client(std::uint16_t port) {
        auto made = SocketRecorder::Create();
        made->socket->SSLEnable(true);
        made->socket->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
        made->socket->RemoteHost(u"localhost");
        made->socket->RemotePort(port);
        return made;
    }

    // Answers each line with its characters reversed.
    std::unique_ptr<Process> Server(const Identity& identity, std::uint16_t port,
                                    std::vector<std::string> options = {}) {
        std::vector<std::string> command = {"openssl", "s_server", "-rev", "-accept",
                                            "127.0.0.1:" + std::to_string(port)};
        command.insert(command.end(), {"-cert", identity.SaveCertificate(folder.Path()), "-key",
                                       identity.SaveKey(folder.Path())});
        command.insert(command.end(), options.begin(), options.end());
        auto made = std::make_unique<Process>(folder, "s_server", command);
        EXPECT_TRUE(WaitForPort(port)) << folder.Read("s_server.log");
        return made;
    }

    Folder folder;
    Identity authority = Authority("The authority of these tests");
    Identity good = IssuedBy(authority, {});
};

TEST_F(TlsPeers, SpeakBothVersionsOfTheProtocol) {
    for (const char* version : {"-tls1_2", "-tls1_3"}) {
        std::uint16_t port = FreePort();
        auto server = Server(good, port, {version});
        auto client = Client(port);
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
    std::uint16_t port = FreePort();
    auto server = Server(good, port, {"-tls1_1", "-cipher", "ALL:@SECLEVEL=0"});
    auto client = Client(port);
    client->socket->Connect();
    EXPECT_EQ(client->log, Log{"error:10053:Software caused connection abort."});
}

TEST_F(TlsPeers, AreJudgedByTheirCertificates) {
    CertificateWishes expired;
    expired.validFromDay = -9;
    expired.validUntilDay = -1;
    CertificateWishes otherName;
    otherName.alternativeNames = "DNS:elsewhere.example";
    std::vector<std::pair<Identity, int>> rows;
    rows.emplace_back(IssuedBy(authority, expired), 10);
    rows.emplace_back(IssuedBy(authority, otherName), 62);
    rows.emplace_back(SelfSigned({}), 18);
    for (auto& [identity, verdict] : rows) {
        std::uint16_t port = FreePort();
        auto server = Server(identity, port);
        auto client = Client(port);
        client->socket->Connect();
        EXPECT_EQ(client->socket->State(), sockConnected);
        EXPECT_EQ(client->socket->SSLTrusted(), verdict);
    }
}

TEST_F(TlsPeers, AStoppedServerDoesNotHangTheCaller) {
    std::uint16_t port = FreePort();
    auto server = Server(good, port);
    server->Signal(SIGSTOP);
    auto client = Client(port);
    client->socket->TimeOut(300);
    client->socket->Connect();
    EXPECT_EQ(client->log, Log{"error:10053:Software caused connection abort."});
    EXPECT_EQ(client->socket->State(), sockClosed);
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

    Process Visitor(std::vector<std::string> options) {
        std::vector<std::string> command = {"openssl", "s_client", "-quiet", "-connect",
                                            "127.0.0.1:" + std::to_string(listener->socket->LocalPort())};
        command.insert(command.end(), options.begin(), options.end());
        return Process(folder, "s_client", command, folder.Write("input", "hello\n"));
    }

    std::shared_ptr<SocketRecorder> listener = SocketRecorder::Create();
    std::shared_ptr<SocketRecorder> server = SocketRecorder::Create();
};

TEST_F(TlsServer, ServesAClientThatVerifiesIt) {
    std::string ca = authority.SaveCertificate(folder.Path());
    for (const char* version : {"-tls1_2", "-tls1_3"}) {
        server->received.clear();
        server->on["data"] = [&] {
            server->socket->SendData(u"welcome");
            server->socket->Disconnect();
        };
        Process visitor =
            Visitor({version, "-CAfile", ca, "-verify_return_error", "-verify_hostname", "localhost"});
        EXPECT_TRUE(RunUntil([&] { return !visitor.IsRunning(); })) << version;
        EXPECT_EQ(server->received, "hello\n") << folder.Read("s_client.log");
        EXPECT_NE(folder.Read("s_client.log").find("welcome"), std::string::npos);
    }
}

TEST_F(TlsServer, AVisitorThatSpeaksSomethingElseIsDropped) {
    server->socket->TimeOut(60000);  // it is the plain text that ends this, not the clock
    std::string connection = "/dev/tcp/127.0.0.1/" + std::to_string(listener->socket->LocalPort());
    Process visitor(folder, "visitor",
                    {"bash", "-c", "exec 3<>" + connection + "; echo GET / HTTP/1.0 >&3; cat <&3"});
    ASSERT_TRUE(RunUntil([&] { return !visitor.IsRunning(); }));
    EXPECT_EQ(server->log, Log{"error:10053:Software caused connection abort."});
    EXPECT_EQ(server->socket->State(), sockClosed);
}

TEST_F(TlsServer, WithoutItsCertificateItServesNobody) {
    server->socket->SSLServerKey(u"no/such/key");
    Process visitor = Visitor({});
    ASSERT_TRUE(RunUntil([&] { return !server->log.empty(); }));
    EXPECT_EQ(server->log, Log{"error:10053:Software caused connection abort."});
}

}  // namespace
}  // namespace quorix::testing_real
