// A server that is killed again and again while messages fly between two people who stay.
#include "tests/real/Person.h"
#include "tests/real/RunUntil.h"

namespace quorix::real {
namespace {

constexpr int kKills = 100;
constexpr int kBurst = 10;

class Writer : public Person {
public:
    Writer(const RealServer& server, StringView name, eMode mode) : Person(server.Port(), name, u"home") {
        cSession& session = *operator->();
        session.Mode(mode);
        session.AuthType(KV_PlainAuth);
        // In the classic mode only the newest session of a thread comes back by itself.
        session.Reconnect(mode == KV_Modern);
        session.ReconnectInterval(1);
        session.ReconnectAttempts(1000);
    }

    bool ComesBack() {
        if ((*this)->Mode() == KV_Classic) return Return();
        if (!RunUntil([&] { return (*this)->Active(); }, 60)) return false;
        (*this)->SendMyPresence();
        return Settle();
    }

    void BeginAnew() {
        sent_ = 0;
        Events() = testkit::EventRecorder();
        *log = testkit::EventRecorder();
    }

    void Write(const Writer& to) {
        for (int i = 0; i < kBurst && (*this)->IsConnected(); ++i) {
            String text = ToString(sent_++);
            (*this)->CreateMessage(Concat({to.jid, u"/home"}), MSG_Chat, text, u"")->SendMessage();
        }
    }

    int Sent() const { return sent_; }

    // How many arrived, -1 when they are not the first ones, each once and in order.
    int Arrived() const {
        int count = 0;
        for (const auto& message : Events().messages) {
            if (message->Body() != ToString(count++)) return -1;
        }
        return count;
    }

private:
    int sent_ = 0;
};

class Kills : public ::testing::TestWithParam<eMode> {};

TEST_P(Kills, DISABLED_LoseAndDoubleNothingBetweenTwoWhoSurvive) {
    const std::string missing = WhyMissing(ServerKind::prosody);
    if (!missing.empty()) return SkipOrFail(missing);
    auto server = MakeServer(ServerKind::prosody);
    server->Start();
    Writer ann(*server, u"killed.ann", GetParam()), bob(*server, u"killed.bob", GetParam());
    ASSERT_TRUE(ann.Join() && bob.Join());
    auto write = [&] {
        ann.Write(bob);
        bob.Write(ann);
    };
    int all = 0;
    for (int kill = 1; kill <= kKills; ++kill) {
        SCOPED_TRACE(kill);
        ann.BeginAnew();
        bob.BeginAnew();
        ASSERT_TRUE(RunUntil([&] { return write(), bob.Arrived() < 0 || bob.Arrived() > 17 * kill % 300; }));
        server->Kill();
        ASSERT_TRUE(RunUntil([&] { return !ann->IsConnected() && !bob->IsConnected(); }));
        ASSERT_TRUE(ann.Arrived() >= 0 && ann.Arrived() <= bob.Sent());
        ASSERT_TRUE(bob.Arrived() >= 0 && bob.Arrived() <= ann.Sent());
        all += ann.Arrived() + bob.Arrived();
        server->Start();
        ASSERT_TRUE(ann.ComesBack() && bob.ComesBack());
    }
    ann.BeginAnew();
    bob.BeginAnew();
    for (int i = 0; i < kBurst; ++i) write();
    EXPECT_TRUE(RunUntil([&] { return ann.Arrived() == bob.Sent() && bob.Arrived() == ann.Sent(); }));
    std::cout << kKills << " kills, " << all << " messages arrived between them\n";
}

INSTANTIATE_TEST_SUITE_P(Modes, Kills, ::testing::Values(KV_Classic, KV_Modern));

}  // namespace
}  // namespace quorix::real
