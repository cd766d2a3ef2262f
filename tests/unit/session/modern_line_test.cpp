// The modern mode's way to the server, and back to it.
#include "quorix/net/mSocketSSL.h"
#include "testkit/TemporaryFolder.h"
#include "testkit/TlsPeer.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

using testkit::CertificateWishes;
using testkit::Identity;

constexpr std::int32_t kMinute = 60000;

class Modern : public SessionTest {
protected:
    Modern() {
        session->Mode(KV_Modern);
        session->AuthType(KV_PlainAuth);
    }

    void Accept() { Say("<stream:stream id='s1' xmlns='jabber:client'><iq type='result' id='kv_login'/>"); }

    void ConnectAndLogIn() {
        session->Connect();
        env.DoEvents();
        Accept();
        Heard();
        EXPECT_TRUE(session->Active());
        *events = EventRecorder();
    }
};

class ModernSecure : public Modern {
protected:
    ModernSecure() {
        session->UseSSL(true);
        session->ServerAddress(u"localhost");
        session->Socket()->SSLCAFile(TextFromUtf8(authority.SaveCertificate(folder.Path())));
    }

    void Converse() {
        for (int round = 0; round < 6; ++round) {
            env.DoEvents();
            peer->Hear(env.Peer().TakeHeard());
            std::string answer = peer->TakeOutput();
            if (!answer.empty()) env.Peer().Say(answer);
        }
    }

    // Whether the login's first text arrived.
    bool IsTrusted(const Identity& identity) {
        peer = std::make_unique<testkit::TlsPeer>(identity);
        session->Connect();
        Converse();
        bool trusted = !peer->Text().empty();
        session->Disconnect();
        return trusted;
    }

    testkit::TemporaryFolder folder;
    Identity authority = testkit::Authority("The authority of these tests");
    std::unique_ptr<testkit::TlsPeer> peer;
};

// Each of thousands would otherwise be taken inside the one before it.
TEST_F(Modern, SessionsThatAreLostTogetherAreTakenOneAfterTheOther) {
    auto other = cSession::Create();
    auto ofTheOther = std::make_shared<EventRecorder>();
    other->Advise(ofTheOther);
    other->Mode(KV_Modern);
    other->ServerAddress(u"s");
    other->Connect();
    env.DoEvents();
    session->Connect();
    env.DoEvents();
    events->hook = [&](const std::string&) { EXPECT_TRUE(ofTheOther->lines.empty()); };
    env.Peer(1).Close();
    env.Peer(0).Close();
    env.DoEvents();
    EXPECT_EQ(events->lines, ofTheOther->lines);
}

// A machine that slept finds its timers long due, and its server perhaps well.
TEST_F(Modern, AClockThatJumpsEndsNothingByItself) {
    ConnectAndLogIn();
    events->hook = [&](const std::string& event) {
        if (event == "OnMessage") env.SkipTime(24 * 60 * kMinute);
    };
    Say("<message from='a@s'><body>sleep</body></message>");
    env.Advance(1);
    Heard();
    Say("<message from='a@s'><body/></message>");
    env.Advance(1000);
    EXPECT_EQ(events->Count("OnDisConnected"), 0U);
}

TEST_F(ModernSecure, NothingGoesOutToACertificateThatIsNotTrusted) {
    auto issued = [&](int until, const char* names) {
        return testkit::IssuedBy(authority, {"localhost", names, -30, until});
    };
    const char* here = "DNS:localhost";
    EXPECT_TRUE(IsTrusted(issued(30, here)));
    EXPECT_EQ(events->Take(), Lines{"OnDisConnected"});
    std::vector<std::pair<Identity, std::string>> rows;
    rows.emplace_back(issued(-1, here), "certificate has expired");
    rows.emplace_back(testkit::SelfSigned({}), "self-signed certificate");
    rows.emplace_back(issued(30, "DNS:elsewhere.example"), "hostname mismatch");
    rows.emplace_back(testkit::IssuedBy(testkit::Authority("Other"), {}),
                      "unable to get local issuer certificate");
    for (auto& [identity, reason] : rows) {
        EXPECT_FALSE(IsTrusted(identity));
        EXPECT_EQ(events->Take(), (Lines{"OnSocketError Certificate not trusted: " + reason + " 101",
                                         "OnDisConnected", "OnDisConnected"}));
        EXPECT_NE(session->Socket()->SSLTrusted(), 0);
    }
    EXPECT_EQ(env.RunningTimers(), 0U) << "and no attempt follows";
}

TEST_F(ModernSecure, APinAcceptsOneCertificateAndNoOther) {
    Identity odd = testkit::SelfSigned({"elsewhere", "DNS:elsewhere", -30, -1});
    EXPECT_FALSE(IsTrusted(odd));
    String fingerprint = session->Socket()->SSLFingerprint();
    ASSERT_EQ(fingerprint.size(), 64U);
    session->Socket()->SSLPin(fingerprint);
    EXPECT_TRUE(IsTrusted(odd));
    EXPECT_EQ(session->Socket()->SSLTrusted(), 0);
    String upper;
    for (char16_t digit : fingerprint) {
        if (upper.size() % 3 == 2) upper += u':';
        upper += digit >= u'a' ? static_cast<char16_t>(digit - 32) : digit;
    }
    session->Socket()->SSLPin(upper);
    EXPECT_TRUE(IsTrusted(odd));
    EXPECT_FALSE(IsTrusted(testkit::IssuedBy(authority, {}))) << "a new key, however good";
    session->Socket()->SSLPin(u"");
    EXPECT_TRUE(IsTrusted(testkit::IssuedBy(authority, {})));
}

// Silent, talking nonsense, or gone: each ends the attempt, and nothing waits inside Connect.
TEST_F(ModernSecure, AHandshakeThatFailsIsAFailedAttempt) {
    session->Reconnect(false);
    std::vector<std::pair<std::function<void()>, std::string>> peers = {
        {[] {}, "OnSocketError Timeout 0"},
        {[&] { env.Peer().Say("<stream:error>plain text</stream:error>"); },
         "OnSocketError Software caused connection abort. 10053"},
        {[&] { env.Peer().Close(); }, "OnSocketError Software caused connection abort. 10053"},
    };
    for (auto& [play, event] : peers) {
        std::int64_t before = env.Milliseconds();
        session->Connect();
        env.DoEvents();
        EXPECT_EQ(env.Milliseconds(), before);
        EXPECT_EQ(events->lines, Lines());
        play();
        env.Advance(5000);
        EXPECT_EQ(events->Take(), Lines{event});
        EXPECT_EQ(env.OpenSockets() + env.RunningTimers(), 0U);
    }
}

}  // namespace
}  // namespace quorix
