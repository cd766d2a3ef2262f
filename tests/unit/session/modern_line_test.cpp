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
const Address kFirst{0, 0, Ip6{0xFD, 1}};
const Address kSecond{0xC0000202};

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

TEST_F(Modern, GoesWhereTheSettingsAndTheRecordsSay) {
    struct Row {
        StringView host;
        std::int16_t port;
        StringView server;
        std::vector<std::string> destinations;  // as each before the last refuses
    };
    env.ScriptService("s", {{"a.s", 5223}, {"b.s", 5224}});
    env.ScriptAddresses("a.s", {kFirst, kSecond});
    env.ScriptAddresses("s", {{0xC0000203}});
    env.ScriptAddresses("other", {{0xC0000204}});
    for (const Row& row : {Row{u"", 0, u"s", {"fd01:: 5223", "192.0.2.2 5223", "127.0.0.1 5224"}},
                           {u"", 5299, u"s", {"192.0.2.3 5299"}},
                           {u"other", 0, u"s", {"192.0.2.4 5222"}},
                           {u"", 0, u"other", {"192.0.2.4 5222"}},
                           {u"", 0, u"192.0.2.4", {"192.0.2.4 5222"}}}) {
        session->ConnectHost(row.host);
        session->Port(row.port);
        session->ServerAddress(row.server);
        env.RefuseAddress(kFirst, SOCKERR_Refused);
        env.RefuseAddress(kSecond, SOCKERR_Refused);
        session->Connect();
        env.DoEvents();
        Address reached = env.Peer().Destination();
        EXPECT_EQ(BytesFromWire(AddressText(reached)) + " " + std::to_string(reached.port),
                  row.destinations.back());
        EXPECT_EQ(events->lines, Lines()) << "an address that refuses is passed over";
        EXPECT_NE(Heard().find("<stream:stream"), std::string::npos);
    }
}

TEST_F(Modern, TheLastFailureIsTheEventAndDisconnectingIsNone) {
    env.ScriptAddresses("s", {kFirst, kSecond});
    env.RefuseAddress(kFirst, 10051);
    env.RefuseAddress(kSecond, SOCKERR_Refused);
    session->Reconnect(false);
    session->Connect();
    EXPECT_EQ(events->lines, Lines()) << "nothing happens inside Connect";
    env.Advance(kMinute);
    EXPECT_EQ(events->Take(), Lines{"OnSocketError Connection refused. 10061"});
    env.ScriptAddresses("s", {});
    session->Connect();
    env.Advance(kMinute);
    EXPECT_EQ(events->Take(), Lines{"OnSocketError No valid Hostaddress 100"});
    env.ScriptAddresses("s", {{0xC0000205}});
    env.HoldConnections(true);
    session->Connect();
    env.DoEvents();
    EXPECT_EQ(env.OpenSockets(), 1U);
    session->Disconnect();
    env.Advance(kMinute);
    EXPECT_EQ(events->Take(), Lines{"OnDisConnected"});
    session->Connect();
    env.Advance(kMinute);
    EXPECT_EQ(events->Take(), Lines{"OnSocketError Timeout 0"});
    EXPECT_EQ(env.OpenSockets() + env.RunningTimers() + env.RunningLookUps(), 0U);
}

TEST_F(Modern, WhateverKeepsTheLoginWaitingEndsWithLoginTimeout) {
    const std::string late = "OnError s 408 No login in time";
    session->LoginTimeout(20);
    session->Reconnect(false);
    env.HoldLookUps(true);
    session->Connect();
    env.Advance(19999);
    EXPECT_EQ(events->lines, Lines());
    env.Advance(1);
    EXPECT_EQ(events->Take(), (Lines{late, "OnDisConnected"}));
    EXPECT_EQ(env.RunningLookUps(), 0U);
    env.HoldLookUps(false);
    session->Connect();
    env.Advance(20000);
    EXPECT_EQ(events->Take(), (Lines{late, "OnDisConnected"})) << "a server that accepts and stays silent";
    EXPECT_EQ(env.OpenSockets() + env.RunningTimers(), 0U);
    session->LoginTimeout(0);
    session->Connect();
    env.Advance(24 * 60 * kMinute);
    EXPECT_EQ(events->lines, Lines());
}

TEST_F(Modern, ComesBackAtGrowingIntervalsAndAtLastGivesUp) {
    session->ReconnectInterval(10);
    session->ReconnectAttempts(7);
    ConnectAndLogIn();
    env.Peer().Close();
    env.DoEvents();
    EXPECT_EQ(events->Take(), Lines{"OnDisConnected"});
    env.RefuseConnections(SOCKERR_Refused);
    for (std::int64_t wait : {10, 20, 40, 80, 160, 160, 160}) {
        EXPECT_EQ(session->ReconnectDelay(), wait);
        env.Advance(wait * 1000 - 1);
        EXPECT_EQ(session->ReconnectDelay(), 1);
        EXPECT_EQ(events->lines, Lines()) << wait;
        env.Advance(1);
        ASSERT_FALSE(events->lines.empty()) << wait;
        EXPECT_EQ(events->lines.front(), "OnSocketError Connection refused. 10061");
        events->lines.erase(events->lines.begin());
    }
    EXPECT_EQ(events->Take(), Lines{"OnError s 408 Reconnecting has been given up"});
    EXPECT_EQ(env.RunningTimers() + static_cast<std::size_t>(session->ReconnectDelay()), 0U);
}

TEST_F(Modern, AFirstAttemptIsRepeatedAndOnlyALoginResetsTheCount) {
    session->ReconnectInterval(10);
    session->ReconnectAttempts(2);
    env.RefuseConnections(SOCKERR_Refused);
    session->Connect();
    env.DoEvents();
    env.RefuseConnections(SOCKERR_None);
    env.ScriptRandom(0xFFFFFFFF);  // a quarter longer
    env.Advance(10000);
    env.Peer().Close();  // without a login
    env.DoEvents();
    EXPECT_EQ(events->Take(), (Lines{"OnSocketError Connection refused. 10061", "OnDisConnected"}));
    env.Advance(24998);
    EXPECT_EQ(env.PeerCount(), 1U);
    env.Advance(2);
    EXPECT_EQ(env.PeerCount(), 2U);
    Accept();
    env.ScriptRandom(0);  // a quarter shorter
    env.Peer().Close();
    env.Advance(7500);
    EXPECT_EQ(env.PeerCount(), 3U);
    EXPECT_EQ(events->Take(), (Lines{"OnAuthorized", "OnIQ", "OnDisConnected"}));
}

TEST_F(Modern, ASilentServerIsAskedAndThenGivenUp) {
    session->ReconnectInterval(10);
    ConnectAndLogIn();
    env.Advance(64000);
    std::string question = Heard();
    EXPECT_NE(question.find("<ping xmlns='urn:xmpp:ping'/>"), std::string::npos) << question;
    std::string id = question.substr(question.find("id='") + 4, 4);
    Say("<iq type='error' id='" + id + "'><error code='501'/></iq>");
    EXPECT_EQ(events->Take(), Lines());
    EXPECT_EQ(events->incoming.size(), 1U);
    env.Advance(63000);
    Say("<message from='a@s'><body>there</body></message>");
    env.Advance(2000);
    EXPECT_EQ(Heard(), "  \t  ") << "the line is in use";
    events->Take();
    env.Advance(62000 + 64000 + 10);
    EXPECT_EQ(events->Take(), (Lines{"OnError s 408 The server does not answer", "OnDisConnected"}));
    env.Advance(10000);
    EXPECT_EQ(env.PeerCount(), 2U);
}

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

TEST_F(Modern, TablesAreReadableAfterTheEndAndEmptyForTheNextLogin) {
    ConnectAndLogIn();
    Say("<iq type='result'><query xmlns='jabber:iq:roster'><item jid='a@s' subscription='both'/></query></iq>"
        "<presence from='a@s/r'/>");
    Join(u"room@s", u"n");
    env.Peer().Close();
    env.DoEvents();
    EXPECT_EQ(session->Roster().Count() + session->Presence().Count() + session->Rooms().Count(), 3);
    session->Connect();
    env.DoEvents();
    Say("<stream:stream id='s2'>");
    EXPECT_EQ(session->Roster().Count() + session->Presence().Count() + session->Rooms().Count(), 0);
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

struct SocksRow {
    std::string says;  // by the proxy, all of it at once or in single bytes
    std::string event;
    eProxy_Authentication authentication = KV_SocksNoAuth;
};

class ModernSocks : public Modern {
protected:
    void Begin(eProxy_Authentication authentication) {
        session->ProxyType(KV_SOCKS5Proxy);
        session->ProxyHostname(u"proxy");
        session->ProxyAuthentication(authentication);
        session->ProxyUsername(u"\u00FC");
        session->ProxyUseRemoteDNS(true);
        session->Reconnect(false);
        session->Connect();
        env.DoEvents();
    }
};

const std::string kMethod("\5\0", 2);
const std::string kLogin("\5\2", 2);
const std::string kOpenIp4("\5\0\0\1\1\2\3\4\0\1", 10);
const std::string kOpenName("\5\0\0\3\2ab\0\1", 9);

TEST_F(ModernSocks, OpensHoweverTheRepliesAreCut) {
    std::string tunnelled = "<stream:stream id='s1'>";
    for (const std::string& replies : {kMethod + kOpenIp4, kLogin + std::string("\1\0", 2) + kOpenName,
                                       kMethod + std::string("\5\0\0\4", 4) + std::string(18, 'x')}) {
        for (std::size_t piece : {std::size_t{1}, std::size_t{100}}) {
            Begin(KV_SocksUserPass);
            EXPECT_EQ(ErrorOf([&] { session->SendXML(u"<a/>"); }), ERR_NotConnected);
            std::string all = replies + tunnelled;
            for (std::size_t at = 0; at < all.size(); at += piece) Say(all.substr(at, piece));
            std::string heard = Heard();
            EXPECT_EQ(heard.substr(0, 4), std::string("\5\2\2\0", 4));
            EXPECT_NE(heard.find(std::string("\5\1\0\3\1s\x14\x66", 8)), std::string::npos);
            EXPECT_NE(heard.find("<stream:stream"), std::string::npos);
            EXPECT_NE(heard.find("kv_login"), std::string::npos) << "behind the tunnelled header";
            EXPECT_EQ(heard.find("\1\2\xC3\xBC\0") != std::string::npos, replies[1] == '\2');
        }
    }
    EXPECT_EQ(events->Count("OnSocketError"), 0U);
}

TEST_F(ModernSocks, ARefusalIsToldWithItsReason) {
    for (const SocksRow& row :
         {SocksRow{"\5\xFF", "Proxy: no way to log in that both know"},
          {kLogin, "Proxy: no way to log in that both know"},
          {kLogin + "\1\1", "Proxy: login refused", KV_SocksUserPass},
          {kMethod + "\5\2", "Proxy: connection not allowed"},
          {kMethod + std::string("\5\5\0\1\0\0\0\0\0\0", 10), "Proxy: connection refused"},
          {kMethod + "\5\x63", "Proxy: general failure"},
          {"HTTP/1.1 400 Bad Request\r\n\r\n", "The proxy speaks no SOCKS5"},
          {kMethod + "no", "The proxy speaks no SOCKS5"},
          {kMethod + std::string("\5\0\0\7\1", 5), "The proxy speaks no SOCKS5"}}) {
        for (std::size_t piece : {std::size_t{1}, std::size_t{100}}) {
            Begin(row.authentication);
            for (std::size_t at = 0; at < row.says.size(); at += piece) {
                Say(row.says.substr(at, piece));
            }
            EXPECT_EQ(events->Take(), Lines{"OnSocketError " + row.event + " 102"});
            EXPECT_EQ(env.OpenSockets() + env.RunningTimers(), 0U);
        }
    }
}

TEST_F(ModernSocks, AsksForEachAddressInTurnUnlessTheProxyLooksThemUp) {
    env.ScriptAddresses("s", {kFirst, kSecond});
    session->ProxyType(KV_SOCKS5Proxy);
    session->ProxyHostname(u"proxy");
    session->Reconnect(false);
    session->Connect();
    env.DoEvents();
    Heard();
    Say(kMethod);
    EXPECT_EQ(Heard().substr(0, 6), std::string("\5\1\0\4\xFD\1", 6));
    Say("\5\x8");
    Heard();
    Say(kMethod);
    EXPECT_EQ(Heard().substr(0, 8), std::string("\5\1\0\1\xC0\0\2\2", 8));
    EXPECT_EQ(events->lines, Lines());
    Say("\5\4");
    EXPECT_EQ(events->Take(), Lines{"OnSocketError Proxy: host unreachable 102"});
    EXPECT_EQ(env.OpenSockets() + env.RunningTimers(), 0U);
    env.ScriptAddresses("s", {});
    session->Connect();
    env.DoEvents();
    EXPECT_EQ(events->lines, Lines{"OnSocketError No valid Hostaddress 100"});
}

}  // namespace
}  // namespace quorix
