#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

constexpr const char* kDigestLogin =  // SHA-1 of "s1p"
    "<iq type='set' id='kv_login'><query xmlns='jabber:iq:auth'><username>u</username>"
    "<digest>dd13970764febb4c09bdbc8b4b8afe66a4a32c6c</digest><resource>r</resource></query></iq>";

std::string Iq(const std::string& attributes, const std::string& nameSpace, const std::string& content = {}) {
    return "<iq " + attributes + "><query xmlns='" + nameSpace + "'>" + content + "</query></iq>";
}

TEST_F(LoggedIn, EachStanzaRaisesItsEvents) {
    const std::pair<std::string, Lines> cases[] = {
        {"<stream:features/>", {}},
        {Iq("type='result' from='a'", "unknown"), {"OnIQ"}},
        {"<iq type='result' id='7' from='a'/>", {"OnIQResult a", "OnIQ"}},
        {"<iq id='7'/>", {"OnIQ"}},
        {"<iq type='error' from='a'><query xmlns='x'/><error code='404'>Gone</error></iq>",
         {"OnIQError a 404 Gone", "OnIQ"}},
        {"<iq type='error'><error code='99999'>?</error></iq>", {"OnIQError  0 ?", "OnIQ"}},
        {"<iq type='error'><error code='401.5'/></iq>", {"OnIQError  402 ", "OnIQ"}},
        {"<iq><query xmlns='x' type='error' id='kv_login' from='evil'/></iq>", {"OnIQ"}},
        // What a peer sends under an id of ours is a reply only when it is one, and only while it is awaited.
        {Iq("type='set' id='kv_login'", "jabber:iq:roster"), {"OnRosterBegin", "OnRosterEnd", "OnIQ"}},
        {"<iq type='result' id='kv_login'/>", {"OnIQ"}},
        {"<iq type='error' id='kv_login'><error code='401'>No</error></iq>", {"OnIQError  401 No", "OnIQ"}},
        // The account.
        {Iq("type='result' id='kv_changepass'", "jabber:iq:register"), {"OnChangedPassword", "OnIQ"}},
        {"<iq type='error' id='kv_changepass'><error code='406'>Bad</error></iq>",
         {"OnIQError  406 Bad", "OnIQ"}},
        {"<iq type='result' id='kv_removeaccount' from='s'/>",
         {"OnAccountRemoved s kv_removeaccount", "OnIQ"}},
        {Iq("type='result'", "jabber:iq:admin",
            "<presence from='Ann@s/r'><status>é</status></presence><g><presence from='c@d'/></g>"),
         {"OnWhoisOnlineStart", "OnWhoisOnlineUser Ann@s/r é", "OnWhoisOnlineUser c@d ", "OnWhoisOnlineEnd",
          "OnIQ"}},
        {Iq("type='result'", "jabber:iq:admin"), {"OnIQ"}},
        // Agents and gateways.
        {Iq("type='result' id='fullagents'", "jabber:iq:agents", "<agent jid='a'/>"),
         {"OnAgentBegin", "OnAgentItem a agent", "OnAgentEnd", "OnIQ"}},
        {Iq("type='result' id='x'", "jabber:iq:agents", "<agent/>"), {"OnIQ"}},
        {"<iq type='error' id='fullagents'><error code='503'/></iq>",
         {"OnIQError  503 ", "OnAgentBegin", "OnAgentEnd", "OnIQ"}},
        {Iq("type='result'", "jabber:iq:gateway", "<desc>D</desc>"), {"OnGatewayInfo iq D", "OnIQ"}},
        // Version, time, last activity.
        {Iq("type='get' from='a' id='7'", "jabber:iq:version"), {"OnVersionRequest a 7", "OnIQ"}},
        {Iq("type='result' from='a'", "jabber:iq:version", "<os>O</os><name>N</name><version>V</version>"),
         {"OnVersionResult a N V O", "OnIQ"}},
        {Iq("type='get' from='a' id='7'", "jabber:iq:time"), {"OnTimeRequest a 7", "OnIQ"}},
        {Iq("type='result' from='a'", "jabber:iq:time", "<utc>U</utc><tz>Z</tz><display>D</display>"),
         {"OnTimeResult a U D", "OnIQ"}},
        {Iq("", "jabber:iq:time"), {"OnIQ"}},
        {Iq("type='get' from='a' id='7'", "jabber:iq:last"), {"OnGetLastRequest a 7", "OnIQ"}},
        {"<iq type='result' from='a'><query xmlns='jabber:iq:last' seconds='86400'/></iq>",
         {"OnLastSeenResult iq a 86400", "OnIQ"}},
        {"<iq type='result' from='a'><query xmlns='jabber:iq:last' seconds='99999999999'/></iq>",
         {"OnLastSeenResult iq a 0", "OnIQ"}},
        // Files.
        {Iq("type='set' from='a'", "jabber:iq:oob", "<desc>D</desc><url>U</url>"),
         {"OnOOBRequest a D U", "OnIQ"}},
        {Iq("type='result' from='a'", "jabber:iq:oob"), {"OnOOBResult a 1", "OnIQ"}},
        {Iq("type='error' from='a'", "jabber:iq:oob"), {"OnOOBResult a 0", "OnIQ"}},
        // Rooms: those of a server, or the word that it has none; then one room's entries.
        {"<iq type='result' id='gcsrv_1'><conference xmlns='jabber:iq:browse'><item jid='no@c'/>"
         "<item xmlns='jabber:iq:browse' jid='a@c'/><item xmlns='jabber:iq:browse' jid='b@c'/>"
         "<user xmlns='jabber:iq:browse' jid='u@c'/></conference></iq>",
         {"OnChatServerBrowseResult a@c iq", "OnChatServerBrowseResult b@c iq", "OnIQ"}},
        {"<iq type='result' id='gcsrv_1'><conference xmlns='jabber:iq:browse'/></iq>",
         {"OnChatServerBrowseResult (none) iq", "OnIQ"}},
        {"<iq type='result' id='gcroom_1' from='c'><query xmlns='jabber:iq:browse'><conference>"
         "<user jid='a' name='A' category='x' type='t'/><item jid='b' category='y'/><user name='no'/>"
         "<other jid='no'/></conference></query></iq>",
         {"OnChatRoomBrowseResult c iq", "OnGroupChatItem c a A t user", "OnGroupChatItem c b  y item",
          "OnIQ"}},
        {"<iq type='result' id='KV_1'><conference xmlns='jabber:iq:browse'><item jid='a'/></conference></iq>",
         {"OnIQ"}},
        // Shapes that nobody sends in good faith; whatever they raise, the next one is served.
        {Iq("type='result' from='a'", "jabber:iq:register", "<x/><key/><key/><x><field/></x>"), {"OnIQ"}},
        {Iq("type='result' from='nobody'", "jabber:iq:register", "<key>k</key>"), {"OnIQ"}},
        {Iq("type='result'", "jabber:iq:search", "<x xmlns='jabber:x:data'/>"), {"OnIQ"}},
        {"<iq type='result'><x xmlns='jabber:iq:search'><item>t</item></x></iq>",
         {"OnSearchResults 1", "OnIQ"}},
        {"<iq type='result' id='gcroom_'><user xmlns='jabber:iq:browse'/></iq>",
         {"OnChatRoomBrowseResult  iq", "OnIQ"}},
        {"<iq type='result'><vCard xmlns='vcard-temp'><TEL/><ADR/><EMAIL/><N/><ORG/></vCard></iq>",
         {"OnVCardResult  iq", "OnIQ"}},
        {"<iq type='error'><vCard xmlns='vcard-temp'/></iq>", {"OnIQError  0 ", "OnIQ"}},
        {"<iq type='result'><query xmlns='jabber:iq:last' seconds='-1e999'/></iq>",
         {"OnLastSeenResult iq  0", "OnIQ"}}};
    for (const auto& [stanza, lines] : cases) {
        EXPECT_EQ(Raised(stanza), lines) << stanza;
        EXPECT_EQ(events->incoming.back(), stanza);
    }
}

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

struct Reply {
    const char* stanza;
    bool active;
    bool open;
    Lines lines;
};

TEST_F(SessionTest, EachReplyToALoginEndsInItsEvents) {
    const Reply replies[] = {
        {"<iq type='result' id='kv_login'/>", true, true, {"OnAuthorized", "OnIQ"}},
        {"<iq type='result' id='kv_login'><query xmlns='jabber:iq:auth'/></iq>",
         true,
         true,
         {"OnAuthorized", "OnIQ"}},
        {"<iq type='result' id='kv_login'><query xmlns='jabber:iq:auth'><password/></query></iq>",
         false,
         true,
         {"OnIQ"}},
        {"<iq type='error' id='kv_login'><error code='401'>Unauthorized</error></iq>",
         false,
         false,
         {"OnIQError  401 Unauthorized", "OnDisConnected", "OnIQ"}},
        {"<iq type='error' id='kv_login'><query xmlns='jabber:iq:auth'/><error code='401'/></iq>",
         false,
         true,
         {"OnIQError  401 ", "OnIQ"}},
        {"<iq type='error' id='KV_1'><error code='404'>No such user</error></iq>",
         false,
         true,
         {"OnIQError  404 No such user", "OnIQ"}}};
    for (const Reply& reply : replies) {
        OpenStream();
        EXPECT_EQ(Raised(reply.stanza), reply.lines) << reply.stanza;
        EXPECT_EQ(session->Active(), reply.active) << reply.stanza;
        EXPECT_EQ(session->IsConnected(), reply.open) << reply.stanza;
    }
}

// -- A new account --

TEST_F(SessionTest, CreatesAnAccountThenLogsInWithIt) {
    OpenStream(true);
    EXPECT_EQ(Heard(), kHeader + "<iq type='get' to='s' id='KV_1'><query xmlns='jabber:iq:register'/></iq>");
    const std::string request =
        "<iq type='set' to='s' id='kv_newuser'><query xmlns='jabber:iq:register'><username>u</username>"
        "<password>p</password><key>";
    Say(Iq("type='result' id='KV_1'", "jabber:iq:register", "<username/><key>k1</key><key>k2</key>"));
    EXPECT_EQ(Heard(), request + "k1</key></query></iq>");
    Say(Iq("type='result' id='KV_1'", "jabber:iq:register", "<username/><password/>"));
    EXPECT_EQ(Heard(), request + "</key></query></iq>");
    Say(Iq("type='result' id='kv_newuser'", "jabber:iq:register", "<key>k</key>"));
    EXPECT_EQ(events->Take(), (Lines{"OnIQ", "OnIQ", "OnNewUserCreated", "OnDisConnected", "OnIQ"}));
    env.DoEvents();
    ASSERT_EQ(env.PeerCount(), 2U);
    Say("<stream:stream id='s2'>");
    EXPECT_NE(Heard().find("jabber:iq:auth"), std::string::npos);
}

TEST_F(SessionTest, KeepsTheConnectionThatAHandlerOpensForItsNewAccount) {
    OpenStream(true);
    events->hook = [&](const std::string& event) {
        if (event == "OnNewUserCreated") session->Connect();
    };
    EXPECT_EQ(Raised("<iq type='result' id='kv_newuser'/>"), (Lines{"OnNewUserCreated", "OnIQ"}));
    ASSERT_EQ(env.PeerCount(), 2U);
    EXPECT_EQ(Heard(), kHeader);
}

TEST_F(SessionTest, ClosesWhenTheAccountIsRefusedAndTriesToLogIn) {
    OpenStream(true);
    EXPECT_EQ(Raised("<iq type='error' id='kv_newuser'><error code='409'>Taken</error></iq>"),
              (Lines{"OnIQError  409 Taken", "OnDisConnected", "OnIQ"}));
    env.DoEvents();
    EXPECT_EQ(env.PeerCount(), 2U);
}

TEST_F(SessionTest, StaysAwayAfterADisconnectInTheMiddleOfANewAccount) {
    OpenStream(true);
    session->Disconnect();
    env.Advance(100000);
    EXPECT_EQ(env.PeerCount(), 1U);
}

}  // namespace
}  // namespace quorix
