#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

constexpr const char* kFieldsQuery =
    "<iq type='get' to='s' id='KV_1'><query xmlns='jabber:iq:auth'><username>u</username></query></iq>";
constexpr const char* kDigestLogin =  // SHA-1 of "s1p"
    "<iq type='set' id='kv_login'><query xmlns='jabber:iq:auth'><username>u</username>"
    "<digest>dd13970764febb4c09bdbc8b4b8afe66a4a32c6c</digest><resource>r</resource></query></iq>";

// What the session raises for one stanza, once logged in.
struct Dispatch {
    const char* stanza;
    Lines lines;
};

void PrintTo(const Dispatch& dispatch, std::ostream* out) { *out << dispatch.stanza; }

class DispatchTest : public SessionTest, public ::testing::WithParamInterface<Dispatch> {};

TEST_P(DispatchTest, RaisesEvents) {
    LogIn();
    Say(GetParam().stanza);
    EXPECT_EQ(events->lines, GetParam().lines);
    EXPECT_EQ(events->incoming, Lines{GetParam().stanza});
}

INSTANTIATE_TEST_SUITE_P(
    Stanzas, DispatchTest,
    ::testing::Values(
        Dispatch{"<stream:features/>", {}},
        Dispatch{"<iq type='result' from='a'><query xmlns='unknown'/></iq>", {"OnIQ"}},
        Dispatch{"<iq type='result' id='7' from='a'/>", {"OnIQResult a", "OnIQ"}},
        Dispatch{"<iq id='7'/>", {"OnIQ"}},
        // What a peer sends under an id of ours is a reply only when it is one, and only while it is awaited.
        Dispatch{"<iq type='set' id='kv_login'><query xmlns='jabber:iq:roster'/></iq>",
                 {"OnRosterBegin", "OnRosterEnd", "OnIQ"}},
        Dispatch{"<iq type='result' id='kv_login'/>", {"OnIQ"}},
        Dispatch{"<iq type='error' id='kv_login'><error code='401'>No</error></iq>",
                 {"OnIQError  401 No", "OnIQ"}},
        Dispatch{"<iq type='error' from='a'><query xmlns='x'/><error code='404'>Gone</error></iq>",
                 {"OnIQError a 404 Gone", "OnIQ"}},
        Dispatch{"<iq type='error'><error code='99999'>?</error></iq>", {"OnIQError  0 ?", "OnIQ"}},
        Dispatch{"<iq><query xmlns='x' type='error' id='kv_login' from='evil'/></iq>", {"OnIQ"}},
        Dispatch{"<iq type='result' id='kv_changepass'><query xmlns='jabber:iq:register'/></iq>",
                 {"OnChangedPassword", "OnIQ"}},
        Dispatch{"<iq type='result' id='kv_removeaccount' from='s'/>",
                 {"OnAccountRemoved s kv_removeaccount", "OnIQ"}},
        Dispatch{"<iq type='error' id='kv_changepass'><error code='406'>Bad</error></iq>",
                 {"OnIQError  406 Bad", "OnIQ"}},
        Dispatch{"<message type='error' from='a'><body>x</body><error code='503'>Away</error></message>",
                 {"OnError a 503 Away"}},
        Dispatch{"<iq type='result'><query xmlns='jabber:iq:admin'><presence from='a@s/r'/></query></iq>",
                 {"OnWhoisOnlineStart", "OnWhoisOnlineUser a@s/r", "OnWhoisOnlineEnd", "OnIQ"}},
        Dispatch{"<iq type='result'><query xmlns='jabber:iq:admin'/></iq>", {"OnIQ"}}));

// -- Login --

TEST_F(SessionTest, AsksForTheFieldsThenLogsInByDigest) {
    OpenStream();
    EXPECT_TRUE(Heard().ends_with(kFieldsQuery));
    Say("<iq type='result' id='KV_1'><query "
        "xmlns='jabber:iq:auth'><username/><digest/><resource/></query></iq>");
    EXPECT_TRUE(session->digest());
    EXPECT_EQ(Heard(), kDigestLogin);
    Say("<iq type='result' id='kv_login'/>");
    EXPECT_EQ(events->lines, (Lines{"OnIQ", "OnAuthorized", "OnIQ"}));
    EXPECT_TRUE(session->Active());
}

TEST_F(SessionTest, LogsInAtOnceWhenPlainIsAskedFor) {
    session->AuthType(KV_PlainAuth);
    OpenStream();
    EXPECT_TRUE(
        Heard().ends_with("<username>u</username><password>p</password><resource>r</resource></query></iq>"));
}

TEST_F(SessionTest, TakesTheOffersOfEachFieldsReplyAnew) {
    OpenStream();
    Say("<iq type='result'><query xmlns='jabber:iq:auth'><digest/><sequence>12</sequence><token>t</token>"
        "</query></iq>");
    EXPECT_EQ(session->Sequence(), 12);
    EXPECT_EQ(session->Token(), u"t");
    Say("<iq type='result'><query xmlns='jabber:iq:auth'><sequence>70000</sequence></query></iq>");
    EXPECT_FALSE(session->digest());
    EXPECT_EQ(session->Sequence(), 0);
    EXPECT_EQ(session->Token(), u"");
}

struct LoginResult {
    const char* stanza;
    bool active;
    bool open;
    Lines lines;
};

void PrintTo(const LoginResult& result, std::ostream* out) { *out << result.stanza; }

class LoginResultTest : public SessionTest, public ::testing::WithParamInterface<LoginResult> {};

TEST_P(LoginResultTest, EndsInItsEvents) {
    OpenStream();
    events->Take();
    Say(GetParam().stanza);
    EXPECT_EQ(events->lines, GetParam().lines);
    EXPECT_EQ(session->Active(), GetParam().active);
    EXPECT_EQ(session->IsConnected(), GetParam().open);
}

INSTANTIATE_TEST_SUITE_P(
    Replies, LoginResultTest,
    ::testing::Values(
        LoginResult{"<iq type='result' id='kv_login'/>", true, true, {"OnAuthorized", "OnIQ"}},
        LoginResult{"<iq type='result' id='kv_login'><query xmlns='jabber:iq:auth'/></iq>",
                    true,
                    true,
                    {"OnAuthorized", "OnIQ"}},
        LoginResult{"<iq type='result' id='kv_login'><query xmlns='jabber:iq:auth'><password/></query></iq>",
                    false,
                    true,
                    {"OnIQ"}},
        LoginResult{"<iq type='error' id='kv_login'><error code='401'>Unauthorized</error></iq>",
                    false,
                    false,
                    {"OnIQError  401 Unauthorized", "OnDisConnected", "OnIQ"}},
        LoginResult{"<iq type='error' id='kv_login'><query xmlns='jabber:iq:auth'/><error code='401'/></iq>",
                    false,
                    true,
                    {"OnIQError  401 ", "OnIQ"}},
        LoginResult{"<iq type='error' id='KV_1'><error code='404'>No such user</error></iq>",
                    false,
                    true,
                    {"OnIQError  404 No such user", "OnIQ"}}));

// -- A new account --

TEST_F(SessionTest, CreatesAnAccountThenLogsInWithIt) {
    session->Connect(true);
    env.DoEvents();
    Say("<stream:stream id='s1'>");
    EXPECT_TRUE(
        Heard().ends_with("<iq type='get' to='s' id='KV_1'><query xmlns='jabber:iq:register'/></iq>"));
    const std::string request =
        "<iq type='set' to='s' id='kv_newuser'><query xmlns='jabber:iq:register'><username>u</username>"
        "<password>p</password><key>";
    Say("<iq type='result' id='KV_1'><query xmlns='jabber:iq:register'><key>k1</key></query></iq>");
    EXPECT_EQ(Heard(), request + "k1</key></query></iq>");
    Say("<iq type='result' id='KV_1'><query xmlns='jabber:iq:register'><username/><password/></query></iq>");
    EXPECT_EQ(Heard(), request + "</key></query></iq>");
    Say("<iq type='result' id='kv_newuser'><query xmlns='jabber:iq:register'><key>k</key></query></iq>");
    EXPECT_EQ(events->Take(), (Lines{"OnIQ", "OnIQ", "OnNewUserCreated", "OnDisConnected", "OnIQ"}));
    env.DoEvents();
    ASSERT_EQ(env.PeerCount(), 2U);
    Say("<stream:stream id='s2'>");
    EXPECT_TRUE(Heard().find("jabber:iq:auth") != std::string::npos);
}

TEST_F(SessionTest, ClosesWhenTheAccountIsRefusedAndTriesToLogIn) {
    session->Connect(true);
    env.DoEvents();
    Say("<stream:stream id='s1'>");
    Say("<iq type='error' id='kv_newuser'><error code='409'>Taken</error></iq>");
    EXPECT_EQ(events->lines, (Lines{"OnIQError  409 Taken", "OnDisConnected", "OnIQ"}));
    env.DoEvents();
    EXPECT_EQ(env.PeerCount(), 2U);
}

TEST_F(SessionTest, StaysAwayAfterADisconnectInTheMiddleOfANewAccount) {
    session->Connect(true);
    env.DoEvents();
    Say("<stream:stream id='s1'>");
    session->Disconnect();
    env.Advance(100000);
    EXPECT_EQ(env.PeerCount(), 1U);
}

}  // namespace
}  // namespace quorix
