#include "tests/unit/session/SessionFixture.h"

namespace quorix {
namespace {

constexpr const char* kGoodbye = "<presence type=\"unavailable\"><status/></presence></stream:stream>";

TEST_F(SessionTest, ConnectsToThePortsUnsignedValueAndSendsTheHeader) {
    session->Port(static_cast<std::int16_t>(40001));
    session->Connect();
    env.DoEvents();
    EXPECT_EQ(env.Peer().Destination().port, 40001);
    EXPECT_EQ(Heard(), kHeader);
}

TEST_F(SessionTest, SendsNothingWhileNotConnected) {
    session->SendXML(u"<a/>");
    session->Connect();
    session->SendXML(u"<b/>");
    EXPECT_TRUE(events->outgoing.empty());
}

TEST_F(LoggedIn, SaysGoodbyeOnDisconnectAndStaysAway) {
    testkit::ScriptedPeer& peer = env.Peer();
    session->Disconnect();
    EXPECT_EQ(peer.Heard(), kGoodbye);
    EXPECT_TRUE(peer.ClientClosed());
    EXPECT_EQ(events->lines, Lines{"OnDisConnected"});
    EXPECT_FALSE(session->Active());
    EXPECT_EQ(env.RunningTimers(), 0U);
}

TEST_F(SessionTest, RefusesNumbersThatDoNotFit) {
    cPresenceItem item;
    for (std::int32_t show : {-32769, 32768}) {
        EXPECT_EQ(ErrorOf([&] { session->ShowType(static_cast<eShowType>(show)); }), ERR_Overflow);
        EXPECT_EQ(ErrorOf([&] { item.ShowType(static_cast<eShowType>(show)); }), ERR_Overflow);
    }
    for (std::int32_t port : {-1, 65536}) {
        EXPECT_EQ(ErrorOf([&] { session->ProxyPort(port); }), ERR_Overflow) << port;
    }
    session->ProxyPort(65535);
    EXPECT_EQ(session->ProxyPort(), 65535);
    EXPECT_EQ(session->ShowType(), KV_None);
}

TEST_F(SessionTest, ReportsASocketErrorAndNothingElse) {
    env.RefuseConnections(SOCKERR_Refused);
    session->Connect();
    env.DoEvents();
    EXPECT_EQ(events->lines, Lines{"OnSocketError Connection refused. 10061"});
    EXPECT_EQ(events->nodes.at(0)->xml(), u"");
    EXPECT_EQ(env.RunningTimers(), 0U);
}

TEST_F(LoggedIn, ReconnectsEachIntervalAfterALoss) {
    session->ReconnectInterval(7);
    env.Peer().Close();
    env.DoEvents();
    EXPECT_EQ(events->lines, Lines{"OnDisConnected"});
    env.Advance(6999);
    EXPECT_EQ(env.PeerCount(), 1U);
    env.Advance(1);
    EXPECT_EQ(env.PeerCount(), 2U);
    EXPECT_EQ(Heard(), kHeader);
    EXPECT_EQ(env.RunningTimers(), 1U) << "the new socket's connect timer alone";
}

// A loss counts one, and so does each attempt; the tick that finds the limit reached makes the last one.
TEST_F(SessionTest, GivesUpWhenLossAndAttemptsTogetherReachTheLimit) {
    for (auto limit : {std::int16_t{0}, std::int16_t{4}}) {
        env.RefuseConnections(SOCKERR_None);
        LogIn();
        session->ReconnectAttempts(limit);
        session->ReconnectInterval(1);
        env.RefuseConnections(SOCKERR_Refused);
        env.Peer().Close();
        env.Advance(60000);
        EXPECT_EQ(events->Count("OnSocketError"), static_cast<std::size_t>(limit));
        EXPECT_EQ(env.RunningTimers(), 0U);
    }
}

TEST_F(LoggedIn, NeverReconnectsByANegativeInterval) {
    session->ReconnectInterval(-1);
    env.Peer().Close();
    env.Advance(100000);
    EXPECT_EQ(env.PeerCount(), 1U);
    EXPECT_EQ(env.RunningTimers(), 0U);
}

TEST_F(LoggedIn, SendsWhiteSpaceEverySixtyFourSecondsOnceLoggedIn) {
    LogIn();  // a second login leaves one timer
    env.Advance(63999);
    EXPECT_EQ(Heard(), "");
    env.Advance(1);
    EXPECT_EQ(Heard(), "  \t  ");
    env.Advance(64000);
    EXPECT_EQ(Heard(), "  \t  ");
}

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

TEST_F(LoggedIn, ForgetsAStaleClosingTagWithTheConnection) {
    Say("</stream:stream>");
    session->Connect();
    env.DoEvents();
    Say("<stream:stream id='s2'>");
    EXPECT_EQ(session->SessionID(), u"s2");
    EXPECT_FALSE(session->Active());
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

TEST_F(LoggedIn, FinishesTheChunkAfterAHandlerHasDisconnectedButNotAfterANewConnection) {
    events->hook = [&](const std::string& event) {
        if (event == "OnIQ") session->Disconnect();
    };
    Say("<iq type='get'/><iq type='set'/>");
    EXPECT_EQ(events->lines, (Lines{"OnIQ", "OnDisConnected", "OnIQ", "OnDisConnected"}));

    events->hook = nullptr;
    LogIn();
    events->hook = [&](const std::string& event) {
        if (event == "OnIQ") session->Connect();
    };
    Say("<iq type='get'/><iq type='set'/>");
    EXPECT_EQ(events->lines, Lines{"OnIQ"});
}

TEST_F(LoggedIn, WhatArrivesWhileAHandlerSendsPresenceWaitsItsTurn) {
    events->hook = [&](const std::string& event) {
        if (event != "OnMessage" || events->messages.back()->Body() != u"1") return;
        env.Peer().Say("<message><body>3</body></message>");
        session->SendPresence(u"a@b", KV_Available, u"");
        events->lines.emplace_back("sent");
    };
    Say("<message><body>1</body></message><message><body>2</body></message>");
    env.DoEvents();
    EXPECT_EQ(events->lines, (Lines{"OnMessage 1", "sent", "OnMessage 2", "OnMessage 3"}));
}

TEST_F(SessionTest, LeavesTheReconnectDecisionToAHandlerThatHasConnected) {
    for (const std::string where : {"OnError", "OnDisConnected"}) {
        LogIn();
        std::size_t peers = env.PeerCount() + 1;
        events->hook = [&](const std::string& event) {
            if (event == where) session->Connect();
        };
        Say("<stream:error>gone</stream:error>");
        EXPECT_EQ(events->lines, (Lines{"OnError s 0 INVALID XML STREAM", "OnDisConnected"})) << where;
        EXPECT_EQ(env.PeerCount(), peers) << where;
        env.Advance(61000);
        EXPECT_EQ(env.PeerCount(), peers) << "no reconnect timer was left running";
        events->hook = nullptr;
    }
}

TEST_F(LoggedIn, ClosesWhatAHandlerOfTheClosingHasOpenedAndThenNoLongerWants) {
    events->hook = [&](const std::string& event) {
        if (event != "OnDisConnected") return;
        session->Connect();
        session->Disconnect();
    };
    env.Peer().Close();
    env.DoEvents();
    EXPECT_EQ(events->lines, Lines{"OnDisConnected"});
    EXPECT_EQ(env.OpenSockets(), 0U);
    EXPECT_EQ(env.RunningTimers(), 0U);
}

TEST_F(LoggedIn, SaysGoodbyeToNoConnectionThatAHandlerHasBegunMeanwhile) {
    events->hook = [&](const std::string& event) {
        if (event == "OnOutgoingXML" && env.PeerCount() == 1) session->Connect();
    };
    session->Disconnect();
    env.DoEvents();
    EXPECT_EQ(events->lines, Lines{"OnDisConnected"});
    EXPECT_EQ(Heard(), kHeader);
}

// What has not been connected when the good-bye was due hears none, though it may connect meanwhile.
TEST_F(SessionTest, SaysNothingToAConnectionThatComesUpWhileItIsGivenUp) {
    for (eProxyType proxy : {KV_NoProxy, KV_SOCKS5Proxy}) {
        session->ProxyType(proxy);
        session->ProxyHostname(u"s");
        session->Connect();
        session->Disconnect();
        env.DoEvents();
        EXPECT_EQ(Heard(), "");
        EXPECT_EQ(events->outgoing, Lines());
    }
}

TEST_F(LoggedIn, RaisesOneDisconnectionForADisconnectInsideIt) {
    events->hook = [&](const std::string& event) {
        if (event == "OnDisConnected" || event == "OnOutgoingXML") session->Disconnect();
    };
    env.Peer().Close();
    env.DoEvents();
    EXPECT_EQ(events->lines, Lines{"OnDisConnected"});
    EXPECT_EQ(env.RunningTimers(), 0U) << "Disconnect is final";
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

TEST_F(SessionTest, SendsNoPasswordOnceNobodyHoldsIt) {
    session->AuthType(KV_PlainAuth);
    session->Connect();
    env.DoEvents();
    events->hook = [&](const std::string& event) {
        if (event == "OnIncomingXML") session.reset();
    };
    env.Peer().Say("<stream:stream id='s1'>");
    env.DoEvents();
    EXPECT_EQ(env.Peer().Heard(), kHeader);
    EXPECT_EQ(events->outgoing, Lines{kHeader});
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
