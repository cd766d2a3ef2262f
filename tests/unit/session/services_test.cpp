#include "tests/unit/services/ServiceLog.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class SessionServices : public SessionTest {
protected:
    SessionServices() { session->Advise(log); }

    void AddContact(const std::string& jid) {
        Say("<iq type='set'><query xmlns='jabber:iq:roster'><item jid='" + jid + "'/></query></iq>");
    }
    void AddAgent(const std::string& jid) {
        Say("<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='" + jid +
            "'><name>" + jid + "</name></agent></query></iq>");
    }
    void Join(StringView jid, StringView nickname) {
        auto room = std::make_shared<cGroupChat>();
        room->JID(jid);
        room->NickName(nickname);
        session->SendGroupChatRequest(room, true);
        Heard();
    }

    std::shared_ptr<tests::ServiceLog> log = std::make_shared<tests::ServiceLog>();
};

// What a stanza raises from the services, and from the session behind it.
struct Routing {
    const char* name;
    const char* stanza;
    Lines services;
    Lines session;
};

void PrintTo(const Routing& routing, std::ostream* out) { *out << routing.name; }

class ServiceRouting : public SessionServices, public ::testing::WithParamInterface<Routing> {};

TEST_P(ServiceRouting, TakesTheStanzaToItsService) {
    LogIn();
    Say(GetParam().stanza);
    EXPECT_EQ(log->Take(), GetParam().services);
    EXPECT_EQ(events->Take(), GetParam().session);
}

INSTANTIATE_TEST_SUITE_P(
    Namespaces, ServiceRouting,
    ::testing::Values(
        Routing{
            "agents",
            "<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='a'/></query></iq>",
            {"AgentBegin", "AgentItem a agent", "AgentEnd"},
            {"OnAgentBegin", "OnAgentEnd", "OnIQ"}},
        Routing{"agents under another id",
                "<iq type='result' id='x'><query xmlns='jabber:iq:agents'><agent/></query></iq>",
                {},
                {"OnIQ"}},
        Routing{"agents refused",
                "<iq type='error' id='fullagents'><query xmlns='jabber:iq:agents'/><error "
                "code='501'>No</error></iq>",
                {"AgentBegin", "AgentEnd"},
                {"OnIQError  501 No", "OnAgentBegin", "OnAgentEnd", "OnIQ"}},
        Routing{"agents refused without the query",
                "<iq type='error' id='fullagents'><error code='503'/></iq>",
                {"AgentBegin", "AgentEnd"},
                {"OnIQError  503 ", "OnAgentBegin", "OnAgentEnd", "OnIQ"}},
        Routing{"search form",
                "<iq type='result'><query "
                "xmlns='jabber:iq:search'><instructions>I</instructions><nick/></query></iq>",
                {"SearchFields 2"},
                {"OnIQ"}},
        Routing{"search hits",
                "<iq type='result'><query xmlns='jabber:iq:search'><item "
                "jid='a'><nick>n</nick></item></query></iq>",
                {"SearchResults 1"},
                {"OnIQ"}},
        Routing{
            "search refused",
            "<iq type='error' from='j'><query xmlns='jabber:iq:search'/><error code='404'>No</error></iq>",
            {},
            {"OnIQError j 404 No", "OnIQ"}},
        Routing{"card",
                "<iq type='result' from='a'><vCard xmlns='vcard-temp'/></iq>",
                {"VCardResult a iq"},
                {"OnIQ"}},
        Routing{"last",
                "<iq type='result' from='a'><query xmlns='jabber:iq:last' seconds='5'/></iq>",
                {"LastSeenResult iq a 5"},
                {"OnIQ"}},
        Routing{"time",
                "<iq type='get' from='a' id='7'><query xmlns='jabber:iq:time'/></iq>",
                {"TimeRequest a 7"},
                {"OnIQ"}},
        Routing{"version",
                "<iq type='get' from='a' id='7'><query xmlns='jabber:iq:version'/></iq>",
                {"VersionRequest a 7"},
                {"OnIQ"}},
        Routing{"conference",
                "<iq type='result' from='r@c'><query xmlns='jabber:iq:conference'/></iq>",
                {"GroupChat r@c iq"},
                {"OnIQ"}},
        Routing{"rooms",
                "<iq type='result' from='c' id='gcsrv_1'><conference xmlns='jabber:iq:browse'><item "
                "jid='r@c'/></conference></iq>",
                {"ChatServerBrowseResult r@c iq"},
                {"OnIQ"}},
        Routing{"offer",
                "<iq type='set' from='a'><query xmlns='jabber:iq:oob'><url>u</url></query></iq>",
                {"OOBRequest a  u"},
                {"OnIQ"}},
        Routing{"offer refused",
                "<iq type='error' from='a'><query xmlns='jabber:iq:oob'/><error code='406'/></iq>",
                {"OOBResult a failed"},
                {"OnIQ"}},
        Routing{"gateway",
                "<iq type='result'><query xmlns='jabber:iq:gateway'><desc>D</desc></query></iq>",
                {"GatewayInfo iq D"},
                {"OnIQ"}},
        Routing{"gateway refused",
                "<iq type='error' from='g'><query xmlns='jabber:iq:gateway'/><error code='1'/></iq>",
                {},
                {"OnIQError g 1 ", "OnIQ"}},
        Routing{"private data",
                "<iq type='result'><query xmlns='jabber:iq:private'><a xmlns='a:b'/></query></iq>",
                {},
                {"OnIQ"}}));

TEST_F(SessionServices, FillsAnAgentsFieldsAndSendsThemBack) {
    LogIn();
    AddAgent("icq.s");
    session->GetAgentRegister(u"icq.s", u"9");
    Heard();
    Say("<iq type='result' id='9' from='icq.s'><query "
        "xmlns='jabber:iq:register'><instructions>-</instructions>"
        "<username/><key>k</key></query></iq>");
    auto agent = session->Agents().Item(session->FindAgent(u"icq.s"));
    agent->SetField(u"username", u"123");
    agent->Update();
    EXPECT_EQ(
        Heard(),
        R"(<iq type="set" id="KV_2" to="icq.s"><query xmlns="jabber:iq:register"><username>123</username>)"
        R"(<key>k</key></query></iq>)");
}

TEST_F(SessionServices, NothingIsNoMessage) {
    EXPECT_THROW(session->ParseReceiveRoster(nullptr), AutomationError);
}

TEST_F(SessionServices, TellsWhatStandsBehindAnAddress) {
    LogIn();
    AddAgent("Icq.s");
    AddContact("Bob@s");
    AddContact("icq.s");
    Join(u"lobby@c", u"me");
    EXPECT_EQ(session->FindItemType(u"lobby@c"), KV_GroupChatItem);
    EXPECT_EQ(session->FindItemType(u"lobby@c/me"), KV_Unknown);
    EXPECT_EQ(session->FindItemType(u"Lobby@c"), KV_Unknown);
    EXPECT_EQ(session->FindItemType(u"iCQ.s/registered"), KV_AgentItem);
    EXPECT_EQ(session->FindItemType(u"bob@S/home"), KV_RosterItem);
    EXPECT_EQ(session->FindItemType(u""), KV_Unknown);
}

TEST_F(SessionServices, ARoomsPresencesAreNobodysAndOurOwnLeavingForgetsIt) {
    LogIn();
    Join(u"lobby@c", u"Me");
    Say("<presence from='lobby@c/Other'/>");
    EXPECT_EQ(session->Presence().Count(), 0);
    Say("<presence from='lobby@c/Other' type='unavailable'/>");
    EXPECT_EQ(session->FindGroupChat(u"lobby@c"), 1);
    Say("<presence from='lobby@c/Me' type='unavailable'/>");
    EXPECT_EQ(session->FindGroupChat(u"lobby@c"), 0);
}

TEST_F(SessionServices, ARoomIsRecognisedByItsNameInAnyLanguage) {
    LogIn();
    Join(u"caf\u00e9@c", u"\u00c9va");
    Say("<presence from='caf\xc3\xa9@c/Other'/>");
    EXPECT_EQ(session->Presence().Count(), 0);
    Say("<presence from='caf\xc3\xa9@c/\xc3\x89va' type='unavailable'/>");
    EXPECT_EQ(session->FindGroupChat(u"caf\u00e9@c"), 0);
}

TEST_F(SessionServices, TheEndOfTheConnectionEmptiesTheSearch) {
    LogIn();
    Say("<iq type='result'><query xmlns='jabber:iq:search'><instructions>I</instructions></query></iq>");
    auto fields = session->SearchFields();
    Say("<iq type='result'><query xmlns='jabber:iq:search'><item jid='a'><b>c</b></item></query></iq>");
    auto results = session->Searchresults();
    EXPECT_EQ(results->Count(), 1);
    session->Disconnect();
    EXPECT_EQ(results->Count(), 0);
    EXPECT_EQ(session->SearchFields(), fields);
}

TEST_F(SessionServices, ABrokenRequestIsReportedAndNotPutOnTheWire) {
    LogIn();
    AddAgent("jud.s");
    session->SearchFields()->Add(u"nick", u"a<b");
    session->Agents().Item(1)->Search();
    EXPECT_EQ(events->outgoing, Lines{""});
    EXPECT_EQ(Heard(), "");
}

class Leaver : public SessionEvents {
public:
    explicit Leaver(std::shared_ptr<cSession>& session) : session_(session) {}
    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr&) override {
        kept = agent;
        session_.reset();
    }
    std::shared_ptr<cAgentItem> kept;

private:
    std::shared_ptr<cSession>& session_;
};

TEST_F(SessionServices, AHandlerMayDropTheSessionInTheMiddleOfAList) {
    LogIn();
    auto leaver = std::make_shared<Leaver>(session);
    session->Advise(leaver);
    Say("<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent "
        "jid='a'><name>A</name></agent>"
        "<agent jid='b'><name>B</name></agent></query></iq>");
    EXPECT_EQ(session, nullptr);
    EXPECT_EQ(leaver->kept->JID(), u"a");
    EXPECT_THROW(leaver->kept->QueryGateway(), AutomationError);
}

// Stanzas in hostile shapes; whatever they raise, the next one is served.
TEST_F(SessionServices, HostileShapesLoseNothingBehindThem) {
    LogIn();
    AddAgent("a");
    for (const char* stanza : {
             "<iq type='result' from='a'><query "
             "xmlns='jabber:iq:register'><x/><key/><key/><x><field/></x></query></iq>",
             "<iq type='result' from='nobody'><query xmlns='jabber:iq:register'><key>k</key></query></iq>",
             "<iq type='result'><query xmlns='jabber:iq:search'><x xmlns='jabber:x:data'/></query></iq>",
             "<iq type='result'><x xmlns='jabber:iq:search'><item>t</item></x></iq>",
             "<iq type='result' id='gcroom_'><user xmlns='jabber:iq:browse'/></iq>",
             "<iq type='result' id='fullagents'><agent "
             "xmlns='jabber:iq:agents'><name><name/></name></agent></iq>",
             "<iq type='result'><vCard xmlns='vcard-temp'><TEL/><ADR/><EMAIL/><N/><ORG/></vCard></iq>",
             "<iq type='result'><query xmlns='jabber:iq:last' seconds='-1e999'/></iq>",
         }) {
        Say(stanza);
    }
    events->Take();
    Say("<iq type='result' id='7' from='a'/>");
    EXPECT_EQ(events->Take(), (Lines{"OnIQResult a", "OnIQ"}));
}

}  // namespace
}  // namespace quorix
