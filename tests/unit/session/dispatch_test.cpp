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
    const char* name;
    const char* stanza;
    Lines lines;
};

void PrintTo(const Dispatch& dispatch, std::ostream* out) { *out << dispatch.name; }

class DispatchTest : public SessionTest, public ::testing::WithParamInterface<Dispatch> {};

TEST_P(DispatchTest, RaisesEvents) {
    LogIn();
    Say(GetParam().stanza);
    EXPECT_EQ(events->lines, GetParam().lines);
    EXPECT_EQ(events->incoming.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    Stanzas, DispatchTest,
    ::testing::Values(
        Dispatch{"unknown root", "<stream:features/>", {}},
        Dispatch{"unknown namespace", "<iq type='result' from='a'><query xmlns='unknown'/></iq>", {"OnIQ"}},
        Dispatch{"result without a query", "<iq type='result' id='7' from='a'/>", {"OnIQResult a", "OnIQ"}},
        Dispatch{"no type", "<iq id='7'/>", {"OnIQ"}},
        Dispatch{"second login result", "<iq type='result' id='kv_login'/>", {"OnIQ"}},
        Dispatch{"a request is no reply, whatever its id",
                 "<iq type='set' id='kv_login'><query xmlns='jabber:iq:roster'/></iq>",
                 {"OnRosterBegin", "OnRosterEnd", "OnIQ"}},
        Dispatch{"login error after the login",
                 "<iq type='error' id='kv_login'><error code='401'>No</error></iq>",
                 {"OnIQError  401 No", "OnIQ"}},
        Dispatch{"iq error",
                 "<iq type='error' from='a'><query xmlns='x'/><error code='404'>Gone</error></iq>",
                 {"OnIQError a 404 Gone", "OnIQ"}},
        Dispatch{"iq error with an absurd code",
                 "<iq type='error'><error code='99999'>?</error></iq>",
                 {"OnIQError  0 ?", "OnIQ"}},
        Dispatch{"attributes of a child are not the stanza's",
                 "<iq><query xmlns='x' type='error' id='kv_login' from='evil'/></iq>",
                 {"OnIQ"}},
        Dispatch{"password changed",
                 "<iq type='result' id='kv_changepass'><query xmlns='jabber:iq:register'/></iq>",
                 {"OnChangedPassword", "OnIQ"}},
        Dispatch{"account removed",
                 "<iq type='result' id='kv_removeaccount' from='s'/>",
                 {"OnAccountRemoved s kv_removeaccount", "OnIQ"}},
        Dispatch{"password not changed",
                 "<iq type='error' id='kv_changepass'><error code='406'>Bad</error></iq>",
                 {"OnIQError  406 Bad", "OnIQ"}},
        Dispatch{"message error",
                 "<message type='error' from='a'><body>x</body><error code='503'>Away</error></message>",
                 {"OnError a 503 Away"}},
        Dispatch{"list of presences",
                 "<iq type='result'><query xmlns='jabber:iq:admin'><presence from='a@s/r'/><presence "
                 "from='b@s'/></query></iq>",
                 {"OnWhoisOnlineStart", "OnWhoisOnlineUser a@s/r", "OnWhoisOnlineUser b@s",
                  "OnWhoisOnlineEnd", "OnIQ"}},
        Dispatch{
            "admin without presences", "<iq type='result'><query xmlns='jabber:iq:admin'/></iq>", {"OnIQ"}}));

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

TEST_F(SessionTest, IgnoresALoginResultBeforeTheStreamIsOpen) {
    session->Connect();
    env.DoEvents();
    Say("<iq type='result' id='kv_login'/>");
    EXPECT_FALSE(session->Active());
}

// -- A new account --

TEST_F(SessionTest, CreatesAnAccountThenLogsInWithIt) {
    session->Connect(true);
    env.DoEvents();
    Say("<stream:stream id='s1'>");
    EXPECT_TRUE(
        Heard().ends_with("<iq type='get' to='s' id='KV_1'><query xmlns='jabber:iq:register'/></iq>"));
    Say("<iq type='result' id='KV_1'><query xmlns='jabber:iq:register'><username/><password/></query></iq>");
    EXPECT_EQ(Heard(),
              "<iq type='set' to='s' id='kv_newuser'><query xmlns='jabber:iq:register'><username>u</username>"
              "<password>p</password><key></key></query></iq>");
    Say("<iq type='result' id='kv_newuser'><query xmlns='jabber:iq:register'><key>k</key></query></iq>");
    EXPECT_EQ(events->Take(), (Lines{"OnIQ", "OnNewUserCreated", "OnDisConnected", "OnIQ"}));
    env.DoEvents();
    ASSERT_EQ(env.PeerCount(), 2U);
    Say("<stream:stream id='s2'>");
    EXPECT_TRUE(Heard().find("jabber:iq:auth") != std::string::npos);
}

TEST_F(SessionTest, SendsTheFormsKeyBack) {
    session->Connect(true);
    env.DoEvents();
    Say("<stream:stream id='s1'>");
    Say("<iq type='result'><query xmlns='jabber:iq:register'><key>k1</key></query></iq>");
    EXPECT_TRUE(Heard().find("<key>k1</key>") != std::string::npos);
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
