// Real servers behind a TLS listener, and behind an HTTP proxy.
#include <gtest/gtest.h>

#include "testkit/Certificates.h"
#include "testkit/PutProxy.h"
#include "testkit/TemporaryFolder.h"
#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

using namespace testkit;

class ServerTls : public ::testing::TestWithParam<ServerKind> {};

TEST_P(ServerTls, ServesWhateverTheCertificateAndTheVerdictIsTold) {
    std::string missing = WhyMissing(GetParam());
    if (!missing.empty()) return SkipOrFail(missing);
    const TemporaryFolder folder;
    const Identity authority = Authority("The authority of these tests");
    struct Row {
        Identity identity;
        int verdict;
        const char* reason;
    };
    std::vector<Row> rows;
    rows.push_back({IssuedBy(authority, {}), 0, ""});
    rows.push_back(
        {IssuedBy(authority, {.validFromDay = -9, .validUntilDay = -1}), 10, "certificate has expired"});
    rows.push_back(
        {IssuedBy(authority, {.alternativeNames = "DNS:elsewhere.example"}), 62, "hostname mismatch"});
    rows.push_back({SelfSigned({}), 18, "self-signed certificate"});
    rows.push_back({IssuedBy(Authority("Another"), {}), 20, "unable to get local issuer certificate"});
    String pin;  // of the row before
    for (const auto& [identity, verdict, reason] : rows) {
        const Certificate files{identity.SaveCertificate(folder.Path()), identity.SaveKey(folder.Path())};
        const auto server = MakeServer(GetParam(), &files);
        server->Start();
        Person juliet(server->TlsPort(), u"juliet", u"test");
        juliet->UseSSL(true);
        juliet->Socket()->TimeOut(30000);  // a busy machine's server takes its time
        juliet->Socket()->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
        ASSERT_TRUE(juliet.Join());
        EXPECT_EQ(juliet->Socket()->SSLTrusted(), verdict);
        EXPECT_EQ(juliet->Socket()->SSLSubject(), u"CN=localhost");
        EXPECT_NE(juliet->Socket()->SSLCipher(), u"");
        juliet->CreateMessage(u"juliet@localhost/test", MSG_Chat, String(8000, u'x'), u"")->SendMessage();
        ASSERT_TRUE(juliet.Sees("OnMessage " + std::string(8000, 'x')));
        juliet.Events().Take();
        Person modern(server->TlsPort(), u"modern", u"test");
        modern->Mode(KV_Modern);
        modern->AuthType(KV_PlainAuth);
        modern->UseSSL(true);
        modern->Socket()->TimeOut(30000);
        modern->Socket()->SSLCAFile(juliet->Socket()->SSLCAFile());
        auto expectRefusal = [&](const std::string& told) {
            modern->Connect();
            ASSERT_TRUE(modern.AwaitEvent("OnDisConnected"));
            const std::string error = "OnSocketError Certificate not trusted: " + told + " 101";
            EXPECT_EQ(modern.Events().Take(), (Lines{error, "OnDisConnected"}));
            EXPECT_TRUE(modern.Events().outgoing.empty()) << "nothing goes out to whom is not trusted";
        };
        if (!pin.empty()) {
            modern->Socket()->SSLPin(pin);
            expectRefusal("certificate rejected");
            modern->Socket()->SSLPin({});
        }
        if (verdict != 0) {
            expectRefusal(reason);
            modern->Socket()->SSLPin(modern->Socket()->SSLFingerprint());
        }
        EXPECT_TRUE(modern.Join()) << verdict;
        pin = modern->Socket()->SSLFingerprint();
        modern.Events().Take();
        server->Kill();
        EXPECT_TRUE(juliet.AwaitEvent("OnDisConnected") && modern.AwaitEvent("OnDisConnected"));
    }
}

INSTANTIATE_TEST_SUITE_P(Real, ServerTls, ::testing::Values(ServerKind::ejabberd, ServerKind::prosody),
                         NameOfCase);

// It has nothing but SASL.
TEST_P(ServerTls, WithoutTheLoginSaysSo) {
    std::string missing = WhyMissing(GetParam());
    if (!missing.empty()) return SkipOrFail(missing);
    const auto server = MakeServer(GetParam());
    server->LeaveOutTheLogin();
    server->Start();
    Person juliet(server->Port(), u"juliet", u"test");
    juliet->Mode(KV_Modern);
    juliet->AuthType(KV_PlainAuth);
    juliet->Connect();
    ASSERT_TRUE(juliet.AwaitEvent("OnDisConnected"));
    const char* told = GetParam() == ServerKind::ejabberd ? "0 not-authorized" : "503 service-unavailable";
    EXPECT_EQ(juliet.Events().Take(), (Lines{std::string("OnError localhost ") + told, "OnDisConnected"}));
}

class ServerBehindAPutProxy : public RealServerTest {};

TEST_P(ServerBehindAPutProxy, LogsInAndServes) {
    Person juliet(Server().Port(), u"put.juliet", u"test");
    ASSERT_TRUE(juliet.Join());
    juliet->Disconnect();
    Server().AwaitLogouts();
    auto proxy = PutProxy::Create();
    juliet->ProxyType(KV_HTTPProxy);
    juliet->ProxyHostname(u"127.0.0.1");
    juliet->ProxyPort(proxy->Start());
    juliet.Events().Take();
    juliet->Connect();
    ASSERT_TRUE(RunUntil([&] { return proxy->RequestCount() == 1; }));
    RunUntil([] { return false; }, 1);  // the status head must have been read before more is asked
    juliet->SendXML(u" ");
    ASSERT_TRUE(juliet.AwaitEvent("OnAuthorized"));
    juliet->FetchRoster();
    EXPECT_TRUE(juliet.AwaitEvent("OnRosterEnd"));
    juliet->Disconnect();
    EXPECT_TRUE(RunUntil([&] { return proxy->LastBody() == "</stream:stream>"; }));
}

QUORIX_ON_EVERY_SERVER(ServerBehindAPutProxy);

}  // namespace
}  // namespace quorix::real
