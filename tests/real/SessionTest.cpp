// The session's day on each kind of server.
#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

class Session : public RealServerTest {};

// The packages' Prosody offers the password form alone, the others a digest: the session takes the stronger.
TEST_P(Session, LogsInAndReportsAWrongPassword) {
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
    EXPECT_TRUE(emil.Return());
}

// Without ejabberd, whose start takes as long as the tests: who is lost is the same to a session.
class Losses : public RealServerTest {};

TEST_P(Losses, AreFollowedByAnotherLoginInTheClassicMode) {
    Person emil(Server().Port(), u"lost.emil", u"home");
    ASSERT_TRUE(emil.Join());
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

TEST_P(Losses, AndAFirstFailureAreFollowedByTablesAnewInTheModernMode) {
    constexpr int kCount = 20;
    std::vector<std::unique_ptr<Person>> people;
    for (int i = 0; i < kCount; ++i) {
        auto name = Concat({u"modern", ToString(i)});
        people.push_back(std::make_unique<Person>(Server().Port(), name, u"home"));
        cSession& session = *people.back()->operator->();
        session.Mode(KV_Modern);
        session.AuthType(KV_PlainAuth);
        session.Reconnect(true);
        session.ReconnectInterval(1);
        session.ReconnectAttempts(1000);
    }
    Server().Kill();
    for (auto& person : people) (*person)->Connect(true);
    ASSERT_TRUE(people.back()->AwaitEvent("OnSocketError"));
    Server().Start();
    auto allActive = [&] {
        return std::all_of(people.begin(), people.end(), [](auto& person) { return (*person)->Active(); });
    };
    ASSERT_TRUE(RunUntil(allActive, 60));
    Server().Kill();
    ASSERT_TRUE(RunUntil([&] { return !(*people.front())->Active(); }));
    Server().Start();
    ASSERT_TRUE(RunUntil(allActive, 60));
    for (auto& person : people) {
        EXPECT_EQ(person->Events().Count("OnNewUserCreated"), 1U);
        EXPECT_EQ(person->Events().Count("OnAuthorized"), 2U);
    }
}

QUORIX_ON_EVERY_SERVER(Session);
INSTANTIATE_TEST_SUITE_P(Real, Losses, ::testing::Values(ServerKind::prosody, ServerKind::jabberd2),
                         NameOfCase);

}  // namespace
}  // namespace quorix::real
