#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

TEST_F(LoggedIn, TimersReachTheNewestSessionAndNoneThatHasEnded) {
    auto newer = cSession::Create();
    env.Advance(64000);
    EXPECT_EQ(Heard(), "") << "the newer session is not connected";
    newer.reset();
    env.Advance(64000);
    EXPECT_EQ(Heard(), "");
    EXPECT_TRUE(events->lines.empty());
}

TEST_F(LoggedIn, EndsWithItsTimersAlsoWhenAnotherSessionHasTakenItsPlace) {
    env.Peer().Close();
    env.DoEvents();
    session = cSession::Create();
    EXPECT_EQ(env.RunningTimers(), 0U);
}

// At the end of the process, behind the thread's own data.
TEST(Session, MayBeAStaticObject) {
    static std::shared_ptr<cSession> session;
    session = cSession::Create();
    EXPECT_FALSE(session->IsConnected());
}

TEST_F(SessionTest, DropsBytesOfAConnectionThatAHandlerHasClosed) {
    for (bool arrived : {false, true}) {
        LogIn();
        events->hook = [&](const std::string& event) {
            if (event != "OnIQ") return;
            if (arrived) env.DoEvents();
            session->Socket()->Disconnect();
            session->Connect();
        };
        env.Peer().Say("<iq type='get' id='1'/>");
        env.Peer().Say("<iq type='get' id='2'/>");
        env.DoEvents();
        EXPECT_EQ(events->incoming.size(), 1U) << arrived;
        EXPECT_EQ(session->SessionID(), u"s1") << "nothing was taken for the new stream's header";
        events->hook = nullptr;
    }
}

TEST_F(LoggedIn, OutlivesTheLastReferenceUntilItsEntryEndsButRaisesNothingMore) {
    std::weak_ptr<cSession> watch = session;
    bool aliveInside = false;
    events->hook = [&](const std::string& event) {
        if (event != "OnIncomingXML") return;
        session.reset();
        aliveInside = !watch.expired();
    };
    env.Peer().Say("<iq type='get'/><iq type='set'/>");
    env.DoEvents();
    EXPECT_TRUE(aliveInside);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(events->incoming.size(), 1U);
    EXPECT_TRUE(events->lines.empty());
    EXPECT_EQ(env.OpenSockets(), 0U);
    EXPECT_EQ(env.OpenWindows(), 0U);
    EXPECT_EQ(env.RunningTimers(), 0U);
}

TEST_F(LoggedIn, GoesOnAfterAHandlerHasThrownButNotWithASinkThatItHasUnadvised) {
    auto second = std::make_shared<EventRecorder>();
    session->Advise(second);
    events->hook = [](const std::string&) { throw std::runtime_error("handler"); };
    Say("<iq type='get'/>");
    EXPECT_EQ(second->lines, Lines{"OnIQ"});
    EXPECT_EQ(events->lines, Lines{"OnIQ"});
    events->hook = [&](const std::string&) { session->Unadvise(second); };
    Say("<iq type='get'/>");
    EXPECT_EQ(second->incoming.size(), 1U);
}

}  // namespace
}  // namespace quorix
