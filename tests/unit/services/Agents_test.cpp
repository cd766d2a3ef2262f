#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

class AgentsTest : public LoggedIn {
protected:
    Lines List(const std::string& agents) {
        return Raised("<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'>" + agents +
                      "</query></iq>");
    }
    void Form(const std::string& content, const std::string& from = "users.s") {
        Say("<iq type='result' from='" + from + "'><query xmlns='jabber:iq:register'>" + content +
            "</query></iq>");
    }
    std::shared_ptr<cAgentItem> Jud() {
        List(
            "<agent jid='users.s'><name>Users</name><service>jud</service><search/><register/></agent>"
            "<agent jid='Icq.s'><name>ICQ</name><service>icq</service><transport/><groupchat/></agent>");
        return session->Agents().Item(u"Users");
    }
};

TEST_F(AgentsTest, AListNamesEachAgentAndWhatItCan) {
    auto jud = Jud();
    EXPECT_TRUE(jud->Service() == u"jud" && jud->CanSearch() && jud->CanRegister() && !jud->IsTransport() &&
                !jud->IsGroupChat());
    auto icq = session->Agents().Item(u"ICQ");
    EXPECT_TRUE(icq->IsTransport() && icq->IsGroupChat() && !icq->CanSearch() && !icq->CanRegister());
    EXPECT_EQ(session->FindAgent(u"Icq.s"), 2);
    EXPECT_EQ(session->FindAgent(u"icq.s"), 0);
}

TEST_F(AgentsTest, AnAddressStandsForARoomAnAgentOrAContact) {
    Jud();
    Join(u"lobby@c", u"me");
    Say("<iq type='set'><query xmlns='jabber:iq:roster'><item jid='Bob@s'/><item jid='icq.s'/></query></iq>");
    const std::pair<StringView, eItemType> cases[] = {
        {u"lobby@c", KV_GroupChatItem},      {u"lobby@c/me", KV_Unknown},    {u"Lobby@c", KV_Unknown},
        {u"iCQ.s/registered", KV_AgentItem}, {u"bob@S/home", KV_RosterItem}, {u"", KV_Unknown}};
    for (const auto& [jid, type] : cases) EXPECT_EQ(session->FindItemType(jid), type) << Utf8FromText(jid);
}

TEST_F(AgentsTest, ANameThatIsTakenOrInsideAnotherAgentIsPassedOver) {
    EXPECT_EQ(List("<agent jid='a'/><agent jid='b'/><agent jid='c'><name>C</name><agent jid='d'/></agent>"),
              (Lines{"OnAgentBegin", "OnAgentItem a agent", "OnAgentItem c agent", "OnAgentEnd", "OnIQ"}));
    EXPECT_EQ(List("<agent jid='c2'><name>C</name></agent>"), (Lines{"OnAgentBegin", "OnAgentEnd", "OnIQ"}));
    EXPECT_EQ(session->Agents().Item(u"C")->JID(), u"c");
}

TEST_F(AgentsTest, ItsRequestsHoldTheFieldsThatAreValues) {
    auto jud = Jud();
    jud->QueryGateway();
    EXPECT_EQ(Heard(), "<iq type='get' to='users.s'><query xmlns='jabber:iq:gateway'></query></iq>");
    jud->GetSearchFields();
    EXPECT_EQ(Heard(), R"(<iq type="get" id="KV_2" to="users.s"><query xmlns="jabber:iq:search"/></iq>)");
    session->SearchFields()->Add(u"nick", u"bob");
    session->SearchFields()->Add(u"first", u"");
    session->SearchFields()->Add(u"last", u"B &amp; B");
    jud->Search();
    EXPECT_EQ(Heard(), R"(<iq type="set" id="KV_3" to="users.s"><query xmlns="jabber:iq:search">)"
                       "<nick>bob</nick><last>B &amp; B</last></query></iq>");
    for (StringView name : {u"register", u"search", u"instructions", u"service", u"Service", u"key"})
        jud->AddField(name, u"v");
    jud->Update();
    EXPECT_EQ(Heard(), R"(<iq type="set" id="KV_4" to="users.s"><query xmlns="jabber:iq:register">)"
                       "<Service>v</Service><key>v</key></query></iq>");
    jud->Delete();
    EXPECT_EQ(Heard(),
              R"(<iq id="KV_5" type="set"><query xmlns="jabber:iq:roster"><item jid="users.s/registered" )"
              R"(name="users.s/registered" subscription="remove"/></query></iq>)");
    jud->AddField(u"email", u"a&b");
    jud->Update();
    EXPECT_EQ(Heard(), R"(<iq type="set" id="KV_6" to="users.s"><query xmlns="jabber:iq:register">)"
                       "<Service>v</Service><key>v</key><email>a&amp;b</email></query></iq>");
}

TEST_F(AgentsTest, ARegistrationFormFillsTheLastAgentOfThatJid) {
    List("<agent jid='t'><name>1</name></agent><agent jid='t'><name>2</name></agent>");
    Form(
        "<registered/><username>bob</username><username>eve</username>"
        "<x xmlns='jabber:x:data'><title>T</title><field var='v'/></x>",
        "t");
    Form("<key>k</key>", "nobody");
    EXPECT_EQ(session->Agents().Item(1)->Fields().Count(), 0);
    auto agent = session->Agents().Item(2);
    EXPECT_EQ(agent->Fields().Count(), 2);
    EXPECT_TRUE(agent->Registered());
    EXPECT_EQ(agent->GetField(u"username"), u"eve");
    EXPECT_EQ(agent->xData()->Title(), u"T");
    EXPECT_EQ(agent->xData()->Fields().Item(1)->Var(), u"v");
}

TEST_F(AgentsTest, AFormThatCannotBeTakenInIsAQueryLikeAnyOther) {
    Jud()->AddField(u"key", u"v")->Name(u"renamed");
    events->Take();
    Form("<key>k</key>");
    EXPECT_EQ(events->Take(), Lines{"OnIQ"}) << "though the key is taken";
}

TEST_F(AgentsTest, AFieldKeepsTheAgentThatItIsGiven) {
    auto field = std::make_shared<cAgentField>();
    field->cAgentItem(std::make_shared<cAgentItem>());
    EXPECT_NE(field->cAgentItem(), nullptr);
}

TEST_F(AgentsTest, AHandlerMayDropTheSessionInTheMiddleOfAList) {
    auto agent = Jud();
    events->hook = [&](const std::string& event) {
        if (event == "OnAgentItem") session.reset();
    };
    env.Peer().Say(
        "<iq type='result' id='fullagents'><query xmlns='jabber:iq:agents'><agent jid='a'>"
        "<name>A</name></agent><agent jid='b'><name>B</name></agent></query></iq>");
    env.DoEvents();
    EXPECT_EQ(events->Take(), (Lines{"OnAgentBegin", "OnAgentItem a agent"}));
    EXPECT_EQ(ErrorOf([&] { agent->QueryGateway(); }), ERR_ObjectNotSet);
}

}  // namespace
}  // namespace quorix
