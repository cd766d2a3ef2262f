// The session's day on each kind of server.
#include "tests/real/Client.h"

namespace quorix::real {
namespace {

class Session : public RealServerTest {};

// The packages' Prosody offers the password form alone, the others a digest: the session takes the stronger.
TEST_P(Session, LogsInInTheFormThatTheServerOffersAndFetchesTheRoster) {
    Client client(Server(), u"anna", u"home");
    ASSERT_TRUE(client.CreateAccount());
    bool digest = GetParam() != ServerKind::prosody;
    EXPECT_EQ(client.Sent("<digest>"), digest);
    EXPECT_EQ(client.Events().Count("OnNewUserCreated"), 1U);
    client->FetchRoster();
    EXPECT_TRUE(client.AwaitEvent("OnRosterEnd"));
    EXPECT_EQ(client->Roster().Count(), 0);
}

TEST_P(Session, ReportsAWrongPassword) {
    Client client(Server(), u"bert", u"home");
    ASSERT_TRUE(client.CreateAccount());
    client->Disconnect();
    Server().AwaitLogouts();
    client.Events().Take();
    client->Password(u"wrong");
    client->Connect();
    ASSERT_TRUE(client.AwaitEvent("OnIQError"));
    EXPECT_TRUE(client.AwaitEvent("OnIQ"));
    EXPECT_EQ(client.Events().Count("OnAuthorized"), 0U);
    EXPECT_FALSE(client->Active());
}

// Each sees the other by directed presence, which needs no subscription.
TEST_P(Session, ExchangesPresenceAndAMessageInAnyLanguage) {
    Client carla(Server(), u"carla", u"home");
    Client dirk(Server(), u"dirk", u"work");
    ASSERT_TRUE(carla.CreateAccount());
    ASSERT_TRUE(dirk.CreateAccount());
    carla->SendMyPresence();
    dirk->SendMyPresence();

    carla->SendXML(u"<presence to='dirk@localhost/work'><status>da</status></presence>");
    dirk->SendXML(u"<presence to='carla@localhost/home'><status>auch</status></presence>");
    EXPECT_TRUE(dirk.Await([&] { return dirk->FindPresence(u"carla@localhost", u"home", true) > 0; }));
    EXPECT_TRUE(carla.Await([&] { return carla->FindPresence(u"dirk@localhost", u"work", true) > 0; }));

    const auto& messages = dirk.Events().messages;
    carla->CreateMessage(u"dirk@localhost/work", MSG_Chat, u"a<b & \"Grüße\" Привет 中", u"été")
        ->SendMessage();
    ASSERT_TRUE(dirk.Await([&] { return !messages.empty(); }));
    const auto heard = messages.back();
    EXPECT_EQ(heard->Body(), u"a<b & \"Grüße\" Привет 中");
    EXPECT_EQ(heard->Subject(), u"été");
    EXPECT_EQ(heard->FromJid(), u"carla@localhost/home");
    EXPECT_EQ(heard->MSG_Type(), MSG_Chat);
}

TEST_P(Session, ComesBackAfterTheServerWasKilled) {
    Client client(Server(), u"emil", u"home");
    ASSERT_TRUE(client.CreateAccount());
    client->ReconnectInterval(1);
    client->ReconnectAttempts(1000);
    Server().Kill();
    ASSERT_TRUE(client.AwaitEvent("OnDisConnected", 2));  // the first ended the registration
    EXPECT_FALSE(client->Active());
    Server().Start();
    ASSERT_TRUE(client.Await([&] { return client->Active(); }));
    client->FetchRoster();
    EXPECT_TRUE(client.AwaitEvent("OnRosterEnd"));
}

QUORIX_ON_EVERY_SERVER(Session);

}  // namespace
}  // namespace quorix::real
