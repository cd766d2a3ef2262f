// The session through real proxies, to the loopback server in this process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "quorix/net/mSocketSSL.h"
#include "quorix/session/cSession.h"
#include "testkit/LoopbackServer.h"
#include "testkit/PutProxy.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/Servers.h"
#include "tests/real/net/Peer.h"
#include "tests/real/net/RunUntil.h"
#include "tests/real/net/Witness.h"

namespace quorix::real {
namespace {

using testkit::LoopbackServer;

class ThroughAProxy : public ::testing::Test {
protected:
    ThroughAProxy() {
        server->AddAccount(u"juliet", {u"secret"});
        port = server->Start();
        session->Advise(witness);
        session->ServerAddress(u"localhost");
        session->Port(static_cast<std::int16_t>(port));
        session->username(u"juliet");
        session->Password(u"secret");
        session->Resource(u"test");
        session->Reconnect(false);
        session->ProxyHostname(u"127.0.0.1");
    }
    ~ThroughAProxy() override { session->Disconnect(); }

    // A login, and a message to the contact who answers each.
    void Chat() {
        ASSERT_TRUE(RunUntil([&] { return witness->logins == 1; })) << folder.Read("peer.log");
        session->CreateMessage(LoopbackServer::kContact, MSG_Chat, u"\u00E9\u20AC", u"")->SendMessage();
        ASSERT_TRUE(RunUntil([&] { return !witness->body.empty(); }));
        EXPECT_NE(witness->body.find(u"\u00E9\u20AC"), String::npos);
    }

    std::uint16_t port = 0;
    testkit::TemporaryFolder folder;
    std::shared_ptr<LoopbackServer> server = LoopbackServer::Create();
    std::shared_ptr<cSession> session = cSession::Create();
    std::shared_ptr<Witness> witness = std::make_shared<Witness>();
};

class ThroughSocks : public ThroughAProxy {
protected:
    ThroughSocks() { session->ProxyType(KV_SOCKS5Proxy); }

    void Use(const Peer& proxy) { session->ProxyPort(proxy.Port()); }

    void LogInAs(StringView name, StringView password) {
        session->ProxyAuthentication(KV_SocksUserPass);
        session->ProxyUsername(name);
        session->ProxyPassword(password);
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

    void SetUp() override {
        for (const char* program : {"/usr/bin/microsocks", "/usr/sbin/danted"}) {
            if (!std::filesystem::exists(program)) return SkipOrFail(std::string("needs ") + program);
        }
    }
};

TEST_F(ThroughSocks, MicrosocksOpensTheTunnelInBothForms) {
    auto proxy = Microsocks();
    Use(*proxy);
    for (bool remote : {false, true}) {
        *witness = Witness();
        session->ProxyUseRemoteDNS(remote);
        session->Connect();
        Chat();
        session->Disconnect();
    }
}

TEST_F(ThroughSocks, MicrosocksAsksForNameAndPassword) {
    auto proxy = Microsocks({"-u", "joe", "-P", "pw"});
    Use(*proxy);
    LogInAs(u"joe", u"pw");
    session->Connect();
    Chat();
}

TEST_F(ThroughSocks, DanteOpensTheTunnelInBothForms) {
    auto proxy = Dante("pass");
    Use(*proxy);
    for (bool remote : {false, true}) {
        *witness = Witness();
        session->ProxyUseRemoteDNS(remote);
        session->Connect();
        Chat();
        session->Disconnect();
    }
}

TEST_F(ThroughSocks, ARefusalEndsWithoutALogin) {
    struct Row {
        const char* what;
        std::function<std::unique_ptr<Peer>()> proxy;
        std::function<void()> arrange;
    };
    auto closedPort = [&] { session->Port(static_cast<std::int16_t>(FreePort())); };
    const std::vector<Row> rows = {
        {"a wrong password",
         [&] {
             return Microsocks({"-u", "joe", "-P", "pw"});
         },
         [&] { LogInAs(u"joe", u"wrong"); }},
        {"no password",
         [&] {
             return Microsocks({"-u", "joe", "-P", "pw"});
         },
         [&] { session->ProxyAuthentication(KV_SocksNoAuth); }},
        {"a rule", [&] { return Dante("block"); }, [] {}},
        {"a port where nobody listens", [&] { return Microsocks(); }, closedPort},
    };
    for (const Row& row : rows) {
        auto proxy = row.proxy();
        Use(*proxy);
        row.arrange();
        *witness = Witness();
        session->Connect();
        EXPECT_TRUE(RunUntil([&] { return witness->endings == 1; })) << row.what;
        EXPECT_EQ(witness->logins, 0) << row.what;
        EXPECT_EQ(witness->socketError, -1) << row.what;
    }
}

TEST_F(ThroughSocks, ASilentProxyIsWaitedForUntilItIsGone) {
    auto proxy = Microsocks();
    Use(*proxy);
    proxy->Signal(SIGSTOP);
    session->Connect();
    EXPECT_FALSE(RunUntil([&] { return witness->endings + witness->logins > 0; }, 1));
    EXPECT_TRUE(session->IsConnected());
    proxy->Signal(SIGKILL);
    EXPECT_TRUE(RunUntil([&] { return witness->endings == 1; }));
}

TEST_F(ThroughSocks, AProxyThatIsNotThereIsASocketError) {
    session->ProxyPort(FreePort());
    session->Connect();
    EXPECT_TRUE(RunUntil([&] { return witness->socketError == 10061; }));
    EXPECT_EQ(witness->endings, 0);
}

TEST_F(ThroughSocks, AProxyThatDiesEndsTheSession) {
    auto proxy = Microsocks();
    Use(*proxy);
    session->Connect();
    Chat();
    proxy->Kill();
    EXPECT_TRUE(RunUntil([&] { return witness->endings == 1; }));
}

TEST_F(ThroughAProxy, APutProxyCarriesTheStream) {
    auto proxy = testkit::PutProxy::Create();
    session->ProxyType(KV_HTTPProxy);
    session->ProxyPort(proxy->Start());
    session->Connect();
    ASSERT_TRUE(RunUntil([&] { return proxy->RequestCount() == 1; }));
    RunUntil([] { return false; }, 1);  // the status head must have been read before more is asked
    session->SendXML(u" ");
    Chat();
    session->Disconnect();
    EXPECT_TRUE(RunUntil([&] { return proxy->LastBody() == "</stream:stream>"; }));
}

}  // namespace
}  // namespace quorix::real
