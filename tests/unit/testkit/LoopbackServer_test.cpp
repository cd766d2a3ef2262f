#include "testkit/LoopbackServer.h"

#include "quorix/session/cSession.h"
#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

// The session and the server meet in one deterministic environment.
class LoopbackTest : public SessionTest {
protected:
    LoopbackTest() {
        session->ServerAddress(testkit::LoopbackServer::kDomain);
        session->Port(static_cast<std::int16_t>(server->Start(5222)));
    }

    void Connect(bool newUser = false) {
        session->Connect(newUser);
        env.DoEvents();
    }

    std::shared_ptr<testkit::LoopbackServer> server = testkit::LoopbackServer::Create();
};

struct Offer {
    testkit::LoopbackAccount account;
    const char* proof;  // the element that the login must carry
};

TEST_F(LoopbackTest, AcceptsEachFormOfLoginAndRefusesAWrongPassword) {
    for (const Offer& offer : {Offer{{u"p", false}, "<password>"}, Offer{{u"p", true}, "<digest>"},
                               Offer{{u"p", true, 3, u"t"}, "<hash>"}}) {
        server->AddAccount(u"u", offer.account);
        *events = EventRecorder();
        Connect();
        EXPECT_TRUE(session->Active()) << offer.proof;
        EXPECT_NE(events->outgoing.back().find(offer.proof), std::string::npos) << offer.proof;
        session->Password(u"wrong");
        Connect();
        EXPECT_EQ(events->Count("OnIQError"), 1U) << offer.proof;
        EXPECT_FALSE(session->Active());
        session->Password(u"p");
    }
}

TEST_F(LoopbackTest, PlaysAContactWhoIsThereAndAnswers) {
    server->AddAccount(u"u", {.password = u"p"});
    Connect();
    session->FetchRoster();
    session->SendMyPresence();
    env.DoEvents();
    ASSERT_EQ(session->FindRosterItem(testkit::LoopbackServer::kContact), 1);
    EXPECT_EQ(session->FindPresence(testkit::LoopbackServer::kContact, u"loop", true), 1);
    session->CreateMessage(u"echo@localhost", MSG_Chat, u"<grüß>", u"")->SendMessage();
    env.DoEvents();
    EXPECT_EQ(events->lines.back(), "OnMessage You said: <grüß>");
}

TEST_F(LoopbackTest, CreatesTheAccountThatTheSessionThenUses) {
    Connect(true);
    EXPECT_EQ(events->Count("OnNewUserCreated"), 1U);
    EXPECT_TRUE(session->Active());
}

TEST_F(LoopbackTest, DropsTheLineAndTakesTheSessionBack) {
    server->AddAccount(u"u", {.password = u"p"});
    Connect();
    server->DropConnections();
    env.Advance(1000);
    EXPECT_FALSE(session->Active());
    env.Advance(60000);
    EXPECT_TRUE(session->Active());
    EXPECT_EQ(server->ConnectionCount(), 1U);
}

}  // namespace
}  // namespace quorix
