// Ten thousand sessions on one thread, and a server that is killed under them.
#include <chrono>

#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

constexpr int kSessions = 10000;
constexpr int kAtOnce = 200;
constexpr std::int16_t kInterval = 20;  // seconds until the first attempt, a quarter more or less

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

// What a session comes to: its logins, and how long after its loss it first tried to come back, in vain.
struct Member : SessionEvents {
    void OnAuthorized() override { ++logins; }
    void OnDisConnected() override { loss = Clock::now(); }
    void OnSocketError(const NodePtr&, StringView, std::int16_t) override {
        if (wait == 0) wait = Seconds(Clock::now() - loss).count();
    }

    int logins = 0;
    Clock::time_point loss;
    double wait = 0;
};

class Crowd : public ::testing::Test {
protected:
    void Arrive(int port) {
        while (static_cast<int>(sessions_.size()) < kSessions) {
            Add(port);
            if (sessions_.size() % kAtOnce != 0) continue;
            ASSERT_TRUE(RunUntil([&] { return AreActive(); }, 120));
        }
    }

    bool AreActive() const {
        return Every([](const cSession& session) { return session.Active(); });
    }

    bool HaveLoggedIn(int times) const {
        return std::all_of(members_.begin(), members_.end(),
                           [&](const auto& member) { return member->logins == times; });
    }

    bool HaveTried() const {
        return std::all_of(members_.begin(), members_.end(),
                           [](const auto& member) { return member->wait > 0; });
    }

    // The shortest and the longest.
    std::pair<double, double> Waits() const {
        auto shorter = [](const auto& one, const auto& other) { return one->wait < other->wait; };
        auto [least, most] = std::minmax_element(members_.begin(), members_.end(), shorter);
        return {(*least)->wait, (*most)->wait};
    }

private:
    void Add(int port) {
        auto session = sessions_.emplace_back(cSession::Create());
        session->Mode(KV_Modern);
        session->ServerAddress(u"localhost");
        session->ConnectHost(u"127.0.0.1");
        session->Port(static_cast<std::int16_t>(port));
        session->username(u"crowd");
        session->Password(u"secret");
        session->Resource(ToString(static_cast<std::int32_t>(sessions_.size())));
        session->AuthType(KV_PlainAuth);
        session->LoginTimeout(120);
        session->Reconnect(true);
        session->ReconnectInterval(kInterval);
        session->ReconnectAttempts(100);
        session->Advise(members_.emplace_back(std::make_shared<Member>()));
        session->Connect();
    }

    template <class Condition>
    bool Every(Condition condition) const {
        return std::all_of(sessions_.begin(), sessions_.end(),
                           [&](const auto& session) { return condition(*session); });
    }

    std::vector<std::shared_ptr<cSession>> sessions_;
    std::vector<std::shared_ptr<Member>> members_;
};

TEST_F(Crowd, DISABLED_ComesBackFromAKillSpreadAndNobodyTwice) {
    const std::string missing = WhyMissing(ServerKind::prosody);
    if (!missing.empty()) return SkipOrFail(missing);
    auto server = MakeServer(ServerKind::prosody);
    server->Start();
    Person owner(server->Port(), u"crowd", u"owner");
    ASSERT_TRUE(owner.Join());
    owner->Disconnect();
    Arrive(server->Port());

    server->Kill();
    ASSERT_TRUE(RunUntil([&] { return HaveTried(); }, 60));
    const auto [least, most] = Waits();
    EXPECT_NEAR(least, kInterval * 0.75, 1);
    EXPECT_NEAR(most, kInterval * 1.25, 1);
    server->Start();
    ASSERT_TRUE(RunUntil([&] { return AreActive(); }, 300));
    EXPECT_TRUE(HaveLoggedIn(2));
}

}  // namespace
}  // namespace quorix::real
