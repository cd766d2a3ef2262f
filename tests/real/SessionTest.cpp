// The session's day on each kind of server.
#include "tests/real/Person.h"

namespace quorix::real {
namespace {

class Session : public RealServerTest {};

// The packages' Prosody offers the password form alone, the others a digest: the session takes the stronger.
TEST_P(Session, LogsInReportsAWrongPasswordAndComesBackAfterTheServerWasKilled) {
    Person emil(Server().Port(), u"emil", u"home");
    ASSERT_TRUE(emil.Join());
    EXPECT_EQ(Holds(emil.Events().outgoing, "<digest>"), GetParam() != ServerKind::prosody);
    EXPECT_EQ(emil.Events().Count("OnNewUserCreated"), 1U);
    EXPECT_EQ(emil->Roster().Count(), 0);

    emil->Disconnect();
    Server().AwaitLogouts();
    emil.Events().Take();
    emil->Password(u"wrong");
    emil->Connect();
    ASSERT_TRUE(emil.AwaitEvent("OnIQError") && emil.AwaitEvent("OnIQ"));
    EXPECT_EQ(emil.Events().Count("OnAuthorized"), 0U);
    EXPECT_FALSE(emil->Active());

    emil->Password(u"secret");
    ASSERT_TRUE(emil.Return());
    emil->Reconnect(true);
    emil->ReconnectInterval(1);
    emil->ReconnectAttempts(1000);
    emil.Events().Take();
    Server().Kill();
    ASSERT_TRUE(emil.AwaitEvent("OnDisConnected"));
    EXPECT_FALSE(emil->Active());
    Server().Start();
    ASSERT_TRUE(emil.Await([&] { return emil->Active(); }));
    emil->FetchRoster();
    EXPECT_TRUE(emil.Sees("OnRosterEnd"));
}

QUORIX_ON_EVERY_SERVER(Session);

}  // namespace
}  // namespace quorix::real
