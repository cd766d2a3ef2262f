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

TEST_P(ServerTls, ServesBothModesAndTheModernOneOnlyWhereItIsTrusted) {
    std::string missing = WhyMissing(GetParam());
    if (!missing.empty()) return SkipOrFail(missing);
    const TemporaryFolder folder;
    const Identity authority = Authority("The authority of these tests");
    const Identity identity = IssuedBy(authority, {});
    const Certificate files{identity.SaveCertificate(folder.Path()), identity.SaveKey(folder.Path())};
    const auto server = MakeServer(GetParam(), &files);
    server->Start();
    Person juliet(server->TlsPort(), u"juliet", u"test");
    Person modern(server->TlsPort(), u"modern", u"test");
    modern->Mode(KV_Modern);
    modern->AuthType(KV_PlainAuth);
    for (Person* person : {&juliet, &modern}) {
        (*person)->UseSSL(true);
        (*person)->Socket()->TimeOut(30000);  // a busy machine's server takes its time
    }
    ASSERT_TRUE(juliet.Join());
    EXPECT_EQ(juliet->Socket()->SSLTrusted(), 20);
    EXPECT_EQ(juliet->Socket()->SSLSubject(), u"CN=localhost");
    juliet->CreateMessage(u"juliet@localhost/test", MSG_Chat, String(8000, u'x'), u"")->SendMessage();
    ASSERT_TRUE(juliet.Sees("OnMessage " + std::string(8000, 'x')));

    modern->Connect();
    ASSERT_TRUE(modern.AwaitEvent("OnDisConnected"));
    EXPECT_EQ(modern.Events().Take(),
              (Lines{"OnSocketError Certificate not trusted: unable to get local issuer certificate 101",
                     "OnDisConnected"}));
    EXPECT_TRUE(modern.Events().outgoing.empty()) << "nothing goes out to whom is not trusted";
    modern->Socket()->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
    EXPECT_TRUE(modern.Join());
    EXPECT_NE(modern->Socket()->SSLCipher(), u"");
    juliet.Events().Take();
    modern.Events().Take();
    server->Kill();
    EXPECT_TRUE(juliet.AwaitEvent("OnDisConnected") && modern.AwaitEvent("OnDisConnected"));
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
