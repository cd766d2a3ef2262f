#include "testkit/LoopbackServices.h"

#include "testkit/LoopbackServer.h"
#include "tests/unit/services/ServiceLog.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

using testkit::LoopbackServices;

// A session that has logged in to the loopback server and asks for one service after the other.
class LoopbackServicesTest : public SessionTest {
protected:
    LoopbackServicesTest() {
        server->AddAccount(u"u", {.password = u"p"});
        session->Advise(log);
        session->ServerAddress(testkit::LoopbackServer::kDomain);
        session->Port(static_cast<std::int16_t>(server->Start(5222)));
        session->Connect();
        env.DoEvents();
    }

    Lines Answer() {
        env.DoEvents();
        return log->Take();
    }
    std::shared_ptr<cAgentItem> Agent(StringView jid) {
        session->FetchAgents();
        Answer();
        return session->Agents().Item(session->FindAgent(jid));
    }

    std::shared_ptr<testkit::LoopbackServer> server = testkit::LoopbackServer::Create();
    std::shared_ptr<tests::ServiceLog> log = std::make_shared<tests::ServiceLog>();
};

TEST_F(LoopbackServicesTest, ListAgentsAndSearchTheDirectory) {
    auto directory = Agent(LoopbackServices::kDirectory);
    directory->GetSearchFields();
    EXPECT_EQ(Answer(), Lines{"SearchFields 4"});
    session->SearchFields()->Item(1)->FieldData(u"");
    session->SearchFields()->Item(4)->FieldData(u"capulet");
    directory->Search();
    EXPECT_EQ(Answer(), Lines{"SearchResults 2"});
    EXPECT_EQ(session->Searchresults()->Item(1)->SearchItem(), u"juliet@localhost");
}

TEST_F(LoopbackServicesTest, RegisterWithTheGateway) {
    auto gateway = Agent(LoopbackServices::kGateway);
    gateway->QueryGateway();
    EXPECT_EQ(Answer(), Lines{"GatewayInfo iq The name over there"});
    session->GetAgentRegister(gateway->JID(), u"form");
    Answer();
    EXPECT_EQ(gateway->GetField(u"key"), u"loopback");
    events->Take();
    gateway->Update();
    Answer();
    EXPECT_EQ(events->Take(), Lines{"OnIQ"});
}

TEST_F(LoopbackServicesTest, KeepCardsAndPrivateData) {
    auto card = std::make_shared<cVcard>();
    card->FullName(u"Zo\u00eb & Co");
    session->UpdateVcard(card);
    session->SendVCardRequest(session->MyJid());
    EXPECT_EQ(Answer(), Lines{"VCardResult u@localhost iq"});
    EXPECT_EQ(log->vcard->FullName(), u"Zo\u00eb & Co");
    session->StorePrivateData(u"a:b", u"<c>kept</c>");
    session->SendXML(u"<iq type='get' id='1'><query xmlns='jabber:iq:private'><a xmlns='a:b'/></query></iq>");
    Answer();
    EXPECT_EQ(events->nodes.back()->GetTag(u"c"), u"kept");
}

TEST_F(LoopbackServicesTest, HaveARoomToEnterAndLeave) {
    session->BrowseChatServer(LoopbackServices::kConference, u"1");
    EXPECT_EQ(Answer(), Lines{"ChatServerBrowseResult lobby@conference.localhost iq"});
    auto room = log->room;
    room->NickName(u"Me");
    session->SendGroupChatRequest(room, true);
    session->BrowseChatRoom(room->JID(), u"2");
    EXPECT_EQ(Answer().size(), 3U);
    events->Take();
    session->CreateMessage(room->JID(), MSG_GroupChat, u"hello", {})->SendMessage();
    Answer();
    EXPECT_EQ(events->Take(), Lines{"OnMessage hello"});
    session->SendGroupChatRequest(room, false);
    session->BrowseChatRoom(room->JID(), u"3");
    EXPECT_EQ(Answer().size(), 2U);
}

TEST_F(LoopbackServicesTest, AnswerQuestionsAndTakeOffers) {
    StringView contact = testkit::LoopbackServer::kContact;
    session->SendVersionRequest(contact);
    session->SendTimeRequest(contact);
    session->SendLastSeenRequest(contact);
    session->SendOOBRequest(contact, u"file", u"http://localhost/");
    EXPECT_EQ(Answer(), (Lines{"VersionResult echo@localhost Loopback 1 none",
                               "TimeResult echo@localhost 20260102T12:00:00 2 January 2026, noon",
                               "LastSeenResult iq echo@localhost 4711", "OOBResult echo@localhost fetched"}));
}

}  // namespace
}  // namespace quorix
