// The session through real SOCKS5 proxies, to the loopback server in this process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "testkit/LoopbackServer.h"
#include "tests/real/Person.h"
#include "tests/real/net/Peer.h"

namespace quorix::real {
namespace {

using testkit::LoopbackServer;

class ThroughSocks : public ::testing::Test {
protected:
    ThroughSocks() {
        server->AddAccount(u"juliet", {u"secret"});
        juliet->ProxyType(KV_SOCKS5Proxy);
        juliet->ProxyHostname(u"127.0.0.1");
    }

    void SetUp() override {
        for (const char* program : {"/usr/bin/microsocks", "/usr/sbin/danted"}) {
            if (!std::filesystem::exists(program)) return SkipOrFail(std::string("needs ") + program);
        }
    }

    void ConnectThrough(const Peer& proxy, StringView name = u"", StringView password = u"") {
        juliet->ProxyAuthentication(name.empty() ? KV_SocksNoAuth : KV_SocksUserPass);
        juliet->ProxyUsername(name);
        juliet->ProxyPassword(password);
        juliet->ProxyPort(proxy.Port());
        juliet->Disconnect();
        juliet.Events().Take();
        juliet->Connect();
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
    Person juliet{server->Start(), u"juliet", u"test"};
};

TEST_F(ThroughSocks, TheTunnelOpensInBothForms) {
    juliet->ServerAddress(u"127.1");  // a name to look up, for IPv4 alone, where localhost may be either
    auto chat = [&] {
        ASSERT_TRUE(juliet.AwaitEvent("OnAuthorized")) << folder.Read("peer.log");
        juliet->CreateMessage(LoopbackServer::kContact, MSG_Chat, u"\u00E9\u20AC", u"")->SendMessage();
        ASSERT_TRUE(juliet.AwaitEvent("OnMessage"));
        EXPECT_NE(juliet.log->messages.back()->Body().find(u"\u00E9\u20AC"), String::npos);
    };
    for (const auto& proxy : {Microsocks(), Dante("pass")}) {
        for (bool remote : {false, true}) {
            juliet->ProxyUseRemoteDNS(remote);
            ConnectThrough(*proxy);
            chat();
        }
    }
    auto asking = Microsocks({"-u", "joe", "-P", "pw"});
    ConnectThrough(*asking, u"joe", u"pw");
    chat();
}

TEST_F(ThroughSocks, ARefusalIsToldWithItsReasonInTheModernMode) {
    juliet->Mode(KV_Modern);
    juliet->AuthType(KV_PlainAuth);
    auto expectRefusal = [&](const std::unique_ptr<Peer>& proxy, const std::string& reason,
                             StringView password = u"") {
        ConnectThrough(*proxy, password.empty() ? u"" : u"j\u00F6", password);
        EXPECT_TRUE(RunUntil([&] { return !juliet.Events().lines.empty(); }));
        EXPECT_EQ(juliet.Events().Take(), Lines{"OnSocketError Proxy: " + reason + " 102"});
    };
    expectRefusal(Dante("block"), "connection not allowed");
    auto proxy = Microsocks({"-u", "j\u00F6", "-P", "p\u00E9"});
    expectRefusal(proxy, "no way to log in that both know");
    expectRefusal(proxy, "login refused", u"wrong");
    ConnectThrough(*proxy, u"j\u00F6", u"p\u00E9");
    EXPECT_TRUE(juliet.AwaitEvent("OnAuthorized")) << "by the address that is listened on";
    juliet->Port(static_cast<std::int16_t>(FreePort()));  // where nobody listens
    expectRefusal(proxy, "connection refused", u"p\u00E9");
}

}  // namespace
}  // namespace quorix::real
