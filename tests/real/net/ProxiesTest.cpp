// The session through real SOCKS5 proxies, to the loopback server in this process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "quorix/session/cSession.h"
#include "testkit/LoopbackServer.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/Servers.h"
#include "tests/real/net/Peer.h"
#include "tests/real/net/RunUntil.h"
#include "tests/real/net/Witness.h"

namespace quorix::real {
namespace {

using testkit::LoopbackServer;

class ThroughSocks : public ::testing::Test {
protected:
    ThroughSocks() {
        server->AddAccount(u"juliet", {u"secret"});
        session->Advise(witness);
        session->ServerAddress(u"localhost");
        session->Port(static_cast<std::int16_t>(server->Start()));
        session->username(u"juliet");
        session->Password(u"secret");
        session->Resource(u"test");
        session->Reconnect(false);
        session->ProxyType(KV_SOCKS5Proxy);
        session->ProxyHostname(u"127.0.0.1");
    }
    ~ThroughSocks() override { session->Disconnect(); }

    void SetUp() override {
        for (const char* program : {"/usr/bin/microsocks", "/usr/sbin/danted"}) {
            if (!std::filesystem::exists(program)) return SkipOrFail(std::string("needs ") + program);
        }
    }

    void ConnectThrough(const Peer& proxy) {
        *witness = Witness();
        session->ProxyPort(proxy.Port());
        session->Connect();
    }

    void LogInAs(StringView name, StringView password) {
        session->ProxyAuthentication(KV_SocksUserPass);
        session->ProxyUsername(name);
        session->ProxyPassword(password);
    }

    // A login, and a message to the contact who answers each.
    void Chat() {
        ASSERT_TRUE(RunUntil([&] { return witness->logins == 1; })) << folder.Read("peer.log");
        session->CreateMessage(LoopbackServer::kContact, MSG_Chat, u"\u00E9\u20AC", u"")->SendMessage();
        ASSERT_TRUE(RunUntil([&] { return !witness->body.empty(); }));
        EXPECT_NE(witness->body.find(u"\u00E9\u20AC"), String::npos);
    }

    std::unique_ptr<Peer> Microsocks(const std::vector<std::string>& options = {}) {
        int own = FreePort();
        std::vector<std::string> command = {"microsocks", "-i", "127.0.0.1", "-p", std::to_string(own)};
        command.insert(command.end(), options.begin(), options.end());
        return std::make_unique<Peer>(folder, own, command);
    }

    // `rule` is what becomes of each request.
    std::unique_ptr<Peer> Dante(const std::string& rule) {
        int own = FreePort();
        std::string everybody = " { from: 0.0.0.0/0 to: 0.0.0.0/0 }\n";
        std::string settings = "logoutput: stderr\ninternal: 127.0.0.1 port = " + std::to_string(own) +
                               "\nexternal: 127.0.0.1\nclientmethod: none\nsocksmethod: none\n" +
                               (geteuid() == 0 ? "user.privileged: root\nuser.unprivileged: nobody\n" : "") +
                               "client pass" + everybody + "socks " + rule + everybody;
        return std::make_unique<Peer>(
            folder, own, std::vector<std::string>{"danted", "-f", folder.Write("danted.conf", settings)});
    }

    testkit::TemporaryFolder folder;
    std::shared_ptr<LoopbackServer> server = LoopbackServer::Create();
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<Witness> witness = std::make_shared<Witness>();
};

TEST_F(ThroughSocks, TheTunnelOpensInBothForms) {
    for (const auto& proxy : {Microsocks(), Dante("pass")}) {
        for (bool remote : {false, true}) {
            session->ProxyUseRemoteDNS(remote);
            ConnectThrough(*proxy);
            Chat();
        }
    }
}

TEST_F(ThroughSocks, AProxyMayAskForNameAndPassword) {
    auto proxy = Microsocks({"-u", "joe", "-P", "pw"});
    LogInAs(u"joe", u"pw");
    ConnectThrough(*proxy);
    Chat();
}

TEST_F(ThroughSocks, ARefusalEndsWithoutALogin) {
    auto expectRefusal = [&](const char* what, const std::unique_ptr<Peer>& proxy) {
        ConnectThrough(*proxy);
        EXPECT_TRUE(RunUntil([&] { return witness->endings == 1; })) << what;
        EXPECT_EQ(witness->logins, 0) << what;
        EXPECT_EQ(witness->socketError, -1) << what;
    };
    expectRefusal("no password", Microsocks({"-u", "joe", "-P", "pw"}));
    expectRefusal("a rule", Dante("block"));
    LogInAs(u"joe", u"wrong");
    expectRefusal("a wrong password", Microsocks({"-u", "joe", "-P", "pw"}));
    session->ProxyAuthentication(KV_SocksNoAuth);
    session->Port(static_cast<std::int16_t>(FreePort()));
    expectRefusal("a port where nobody listens", Microsocks());
}

TEST_F(ThroughSocks, ASilentProxyIsWaitedForUntilItIsGone) {
    auto proxy = Microsocks();
    proxy->Signal(SIGSTOP);
    ConnectThrough(*proxy);
    EXPECT_FALSE(RunUntil([&] { return witness->endings + witness->logins > 0; }, 1));
    EXPECT_TRUE(session->IsConnected());
    proxy->Signal(SIGKILL);
    EXPECT_TRUE(RunUntil([&] { return witness->endings == 1; }));
}

}  // namespace
}  // namespace quorix::real
