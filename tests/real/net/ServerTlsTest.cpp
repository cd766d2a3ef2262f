// Real servers behind a TLS listener, and behind an HTTP proxy.
#include <gtest/gtest.h>

#include "quorix/base/WireText.h"
#include "quorix/session/cSession.h"
#include "testkit/Certificates.h"
#include "testkit/PutProxy.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Loopback.h"
#include "tests/real/Servers.h"
#include "tests/real/net/RunUntil.h"
#include "tests/real/net/Witness.h"

namespace quorix::real {
namespace {

using namespace testkit;

void Register(int port, const std::string& user) {
    Connection connection(port);
    connection.Send(kStreamHeader);
    connection.ReceiveUntil("<stream:stream");
    connection.Send("<iq type='set' id='new'><query xmlns='jabber:iq:register'><username>" + user +
                    "</username><password>secret</password></query></iq>");
    connection.ReceiveUntil("<iq");
}

std::shared_ptr<cSession> NewSession(const std::shared_ptr<Witness>& witness, int port) {
    auto session = cSession::Create();
    session->Advise(witness);
    session->ServerAddress(u"localhost");
    session->Port(static_cast<std::int16_t>(port));
    session->username(u"juliet");
    session->Password(u"secret");
    session->Resource(u"test");
    session->Reconnect(false);
    return session;
}

class ServerTls : public ::testing::TestWithParam<ServerKind> {
protected:
    void SetUp() override {
        std::string missing = WhyMissing(GetParam());
        if (!missing.empty()) SkipOrFail(missing);
    }

    // A server with the certificate, and a session that has connected to it.
    void Connect(const Identity& identity) {
        Certificate files{identity.SaveCertificate(folder.Path()), identity.SaveKey(folder.Path())};
        server = MakeServer(GetParam(), &files);
        server->Start();
        Register(server->Port(), "juliet");
        *witness = Witness();
        session = NewSession(witness, server->TlsPort());
        session->UseSSL(true);
        session->Socket()->TimeOut(30000);  // a busy machine's server takes its time
        session->Socket()->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
        session->Connect();
        EXPECT_TRUE(session->IsConnected());
    }

    TemporaryFolder folder;
    Identity authority = Authority("The authority of these tests");
    std::unique_ptr<RealServer> server;
    std::shared_ptr<Witness> witness = std::make_shared<Witness>();
    std::shared_ptr<cSession> session;
};

TEST_P(ServerTls, LogsInBehindAGoodCertificateAndNoticesTheEnd) {
    Connect(IssuedBy(authority, {}));
    EXPECT_EQ(session->Socket()->SSLTrusted(), 0);
    EXPECT_EQ(session->Socket()->SSLSubject(), u"CN=localhost");
    EXPECT_NE(session->Socket()->SSLCipher(), u"");
    ASSERT_TRUE(RunUntil([&] { return witness->logins == 1; }));
    session->SendMyPresence();
    session->CreateMessage(u"juliet@localhost/test", MSG_Chat, String(8000, u'x'), u"")->SendMessage();
    ASSERT_TRUE(RunUntil([&] { return !witness->body.empty(); }));
    EXPECT_EQ(witness->body, String(8000, u'x'));
    server->Kill();
    EXPECT_TRUE(RunUntil([&] { return witness->endings == 1; }));
}

TEST_P(ServerTls, ABadCertificateIsAVerdictAndNoObstacle) {
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
        Connect(identity);
        EXPECT_EQ(session->Socket()->SSLTrusted(), verdict);
        EXPECT_TRUE(RunUntil([&] { return witness->logins == 1; })) << verdict;
        session->Disconnect();
    }
}

INSTANTIATE_TEST_SUITE_P(Real, ServerTls, ::testing::Values(ServerKind::ejabberd, ServerKind::prosody),
                         [](const auto& made) { return Name(made.param); });

class ServerBehindAPutProxy : public RealServerTest {};

TEST_P(ServerBehindAPutProxy, LogsInAndServes) {
    Register(Server().Port(), "juliet");
    auto proxy = PutProxy::Create();
    auto witness = std::make_shared<Witness>();
    auto session = NewSession(witness, Server().Port());
    session->ProxyType(KV_HTTPProxy);
    session->ProxyHostname(u"127.0.0.1");
    session->ProxyPort(proxy->Start());
    session->Connect();
    ASSERT_TRUE(RunUntil([&] { return proxy->RequestCount() == 1; }));
    RunUntil([] { return false; }, 1);  // the status head must have been read before more is asked
    session->SendXML(u" ");
    ASSERT_TRUE(RunUntil([&] { return witness->logins == 1; }));
    session->FetchRoster();
    EXPECT_TRUE(RunUntil([&] { return witness->rosters == 1; }));
    session->Disconnect();
    EXPECT_TRUE(RunUntil([&] { return proxy->LastBody() == "</stream:stream>"; }));
}

QUORIX_ON_EVERY_SERVER(ServerBehindAPutProxy);

}  // namespace
}  // namespace quorix::real
