#include <gtest/gtest.h>

#include "quorix/services/Agents.h"
#include "tests/unit/ErrorOf.h"
#include "tests/unit/services/FakeLink.h"
#include "tests/unit/services/ServiceLog.h"

namespace quorix::tests {
namespace {

constexpr StringView kTwoAgents =
    u"<iq type='result' id='fullagents' from='srv'><query xmlns='jabber:iq:agents'>"
    u"<agent jid='users.srv'><name>Users</name><service>jud</service><search/><register/></agent>"
    u"<agent jid='Icq.srv'><name>ICQ</name><service>icq</service><transport/><groupchat/></agent>"
    u"</query></iq>";

class AgentsTest : public ::testing::Test {
protected:
    void Handle(StringView xml) { agents.HandleList(link, StanzaOf(xml)); }
    std::shared_ptr<cAgentItem> Jud() {
        Handle(kTwoAgents);
        log->Take();
        return agents.Items().Item(1);
    }

    std::shared_ptr<ServiceLog> log = std::make_shared<ServiceLog>();
    std::shared_ptr<FakeLink> link = std::make_shared<FakeLink>(log);
    std::shared_ptr<cSearchFields> searchFields = std::make_shared<cSearchFields>();
    Agents agents{searchFields};
};

TEST_F(AgentsTest, AListRaisesEachAgentBetweenBeginAndEnd) {
    Handle(kTwoAgents);
    EXPECT_EQ(log->Take(),
              (Lines{"AgentBegin", "AgentItem users.srv agent", "AgentItem Icq.srv agent", "AgentEnd"}));
    auto jud = agents.Items().Item(u"Users");
    EXPECT_EQ(jud->Service(), u"jud");
    EXPECT_TRUE(jud->CanSearch() && jud->CanRegister() && !jud->IsTransport() && !jud->IsGroupChat());
    auto icq = agents.Items().Item(u"ICQ");
    EXPECT_TRUE(icq->IsTransport() && icq->IsGroupChat() && !icq->CanSearch() && !icq->CanRegister());
    EXPECT_EQ(agents.FindAgent(u"Icq.srv"), 2);
    EXPECT_EQ(agents.FindAgent(u"icq.srv"), 0);
    EXPECT_TRUE(agents.Knows(u"icq.SRV"));
    EXPECT_FALSE(agents.Knows(u"icq"));
}

TEST_F(AgentsTest, ANameThatIsTakenIsPassedOverAndTheListGoesOn) {
    Handle(u"<iq><query><agent jid='a'/><agent jid='b'/><agent jid='c'><name>C</name></agent></query></iq>");
    EXPECT_EQ(log->Take(), (Lines{"AgentBegin", "AgentItem a agent", "AgentItem c agent", "AgentEnd"}));
    Handle(u"<iq><query><agent jid='c2'><name>C</name></agent></query></iq>");
    EXPECT_EQ(log->Take(), (Lines{"AgentBegin", "AgentEnd"}));
    EXPECT_EQ(agents.Items().Count(), 2);
    EXPECT_EQ(agents.Items().Item(u"C")->JID(), u"c");
}

TEST_F(AgentsTest, AnAgentInsideAnAgentIsPartOfIt) {
    Handle(u"<iq><query><agent jid='a'><agent jid='b'><name>B</name></agent></agent></query></iq>");
    EXPECT_EQ(log->Take(), (Lines{"AgentBegin", "AgentItem a agent", "AgentEnd"}));
}

TEST_F(AgentsTest, RequestsAreWrittenExactly) {
    auto jud = Jud();
    FetchAgents(*link);
    EXPECT_EQ(link->TakeSent(),
              "<iq id='fullagents' to='srv' type='get'><query xmlns='jabber:iq:agents'/></iq>");
    GetAgentRegister(*link, u"j", u"i");
    EXPECT_EQ(link->TakeSent(),
              "<iq type='get' id='i' to='j'><query xmlns='jabber:iq:register'></query></iq>");
    jud->QueryGateway();
    EXPECT_EQ(link->TakeSent(),
              "<iq type='get' to='users.srv'><query xmlns='jabber:iq:gateway'></query></iq>");
    EXPECT_EQ(link->ids, 0);
    jud->GetSearchFields();
    EXPECT_EQ(link->TakeSent(),
              R"(<iq type="get" id="KV_1" to="users.srv"><query xmlns="jabber:iq:search"/></iq>)");
    jud->Delete();
    EXPECT_EQ(link->TakeSent(),
              R"(<iq id="KV_2" type="set"><query xmlns="jabber:iq:roster"><item jid="users.srv/registered" )"
              R"(name="users.srv/registered" subscription="remove"/></query></iq>)");
}

TEST_F(AgentsTest, SearchSendsTheFilledFieldsInOrder) {
    auto jud = Jud();
    searchFields->Add(u"nick", u"bob");
    searchFields->Add(u"first", u"");
    searchFields->Add(u"last", u"B &amp; B");
    jud->Search();
    EXPECT_EQ(link->TakeSent(),
              R"(<iq type="set" id="KV_1" to="users.srv"><query xmlns="jabber:iq:search"><nick>bob</nick>)"
              R"(<last>B &amp; B</last></query></iq>)");
}

TEST_F(AgentsTest, ARequestThatItsValuesBreakIsSentEmpty) {
    auto jud = Jud();
    searchFields->Add(u"nick", u"a<b");
    jud->Search();
    jud->AddField(u"email", u"a&b");
    jud->Update();
    EXPECT_EQ(link->sent, (Lines{"", ""}));
}

TEST_F(AgentsTest, UpdateLeavesOutTheFourNamesThatAreNoValues) {
    auto jud = Jud();
    for (StringView name : {u"register", u"search", u"instructions", u"service", u"Service", u"key"}) {
        jud->AddField(name, u"v");
    }
    jud->Update();
    EXPECT_EQ(
        link->TakeSent(),
        R"(<iq type="set" id="KV_1" to="users.srv"><query xmlns="jabber:iq:register"><Service>v</Service>)"
        R"(<key>v</key></query></iq>)");
}

TEST_F(AgentsTest, FieldsAreFoundExactlyAndRegisteredInAnyCase) {
    auto jud = Jud();
    jud->AddField(u"a", u"1");
    jud->AddField(u"B", u"2");
    EXPECT_EQ(jud->FindField(u"B"), 2);
    EXPECT_EQ(jud->FindField(u"b"), 0);
    jud->SetField(u"B", u"3");
    EXPECT_EQ(jud->GetField(u"B"), u"3");
    EXPECT_EQ(jud->GetField(u"c"), u"");
    jud->Fields().Item(u"B")->Name(u"a");
    EXPECT_EQ(jud->GetField(u"a"), u"3");
    EXPECT_FALSE(jud->Registered());
    jud->AddField(u"REGISTERED", u"");
    EXPECT_TRUE(jud->Registered());
    jud->AddAttrib(u"x", u"9");
    EXPECT_EQ(jud->FindAttrib(u"x"), 1);
    EXPECT_EQ(jud->FindAttrib(u"y"), 0);
}

TEST_F(AgentsTest, ImpossibleRequestsHaveTheirNumbers) {
    auto jud = Jud();
    jud->AddField(u"a", u"1");
    EXPECT_EQ(ErrorOf([&] { jud->AddField(u"a", u"2"); }), ERR_KeyInUse);
    EXPECT_EQ(ErrorOf([&] { jud->SetField(u"b", u"2"); }), ERR_Subscript);
    EXPECT_EQ(ErrorOf([] { cAgentItem().Search(); }), ERR_ObjectNotSet);
    link.reset();
    for (auto send : {&cAgentItem::GetSearchFields, &cAgentItem::Search, &cAgentItem::QueryGateway,
                      &cAgentItem::Update, &cAgentItem::Delete}) {
        EXPECT_EQ(ErrorOf([&] { (*jud.*send)(); }), ERR_ObjectNotSet);
    }
}

TEST_F(AgentsTest, ARegistrationFormFillsTheLastAgentOfThatJid) {
    Handle(
        u"<iq><query><agent jid='t'><name>1</name></agent><agent "
        u"jid='t'><name>2</name></agent></query></iq>");
    agents.HandleRegistrationForm(
        StanzaOf(u"<iq type='result' from='t'><query xmlns='jabber:iq:register'><registered/>"
                 u"<username>bob</username><username>eve</username>"
                 u"<x xmlns='jabber:x:data'><title>T</title><field var='v'/></x></query></iq>"));
    EXPECT_EQ(agents.Items().Item(1)->Fields().Count(), 0);
    auto agent = agents.Items().Item(2);
    EXPECT_EQ(agent->Fields().Count(), 2);
    EXPECT_TRUE(agent->Registered());
    EXPECT_EQ(agent->GetField(u"username"), u"eve");
    EXPECT_EQ(agent->xData()->Title(), u"T");
    EXPECT_EQ(agent->xData()->Fields().Item(1)->Var(), u"v");
}

TEST_F(AgentsTest, AFormInAHostileShapeChangesNothingElse) {
    Handle(kTwoAgents);
    for (StringView xml :
         {u"<iq type='result' from='users.srv'/>", u"<iq type='result' from='users.srv'><x/></iq>",
          u"<iq type='result' from='nobody'><query><key>k</key></query></iq>",
          u"<iq type='result'><query><key>k</key></query></iq>"}) {
        agents.HandleRegistrationForm(StanzaOf(xml));
    }
    for (const auto& agent : agents.Items()) EXPECT_EQ(agent->Fields().Count(), 0);
}

TEST_F(AgentsTest, AnAgentReadsFromTheXmlItWasGiven) {
    cAgentItem agent;
    EXPECT_EQ(agent.JID(), u"");
    agent.xml(u"<agent jid='x'><deep><name>no</name></deep></agent>");
    EXPECT_EQ(agent.JID(), u"x");
    EXPECT_EQ(agent.Name(), u"");
    EXPECT_EQ(agent.xml(), u"<agent jid=\"x\"><deep><name>no</name></deep></agent>");
    agent.xml(u"<agent");
    EXPECT_EQ(agent.xml(), u"");
}

}  // namespace
}  // namespace quorix::tests
