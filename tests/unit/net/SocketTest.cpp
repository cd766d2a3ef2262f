#include <gtest/gtest.h>

#include "quorix/net/mSocketSSL.h"
#include "testkit/DeterministicEnvironment.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::testing_net {
namespace {

using testkit::Call;
using testkit::DeterministicEnvironment;

class Socket : public ::testing::Test {
protected:
    std::shared_ptr<SocketRecorder> Connected() {
        auto made = SocketRecorder::Connecting();
        environment.DoEvents();
        made->TakeLog();
        return made;
    }

    DeterministicEnvironment environment;
};

TEST_F(Socket, ConnectingEndsWithThePeersAddressAndAWritableSocket) {
    environment.AddHost("chat.example", 0xC0000207);
    auto client = SocketRecorder::Connecting();
    EXPECT_EQ(client->socket->State(), sockConnecting);
    EXPECT_EQ(client->log, Log());
    environment.DoEvents();
    EXPECT_EQ(client->log, (Log{"connect", "sent"}));
    EXPECT_EQ(client->socket->State(), sockConnected);
    EXPECT_EQ(client->socket->RemoteHost(), u"192.0.2.7");
    EXPECT_EQ(client->socket->RemotePort(), 5222);
    EXPECT_EQ(client->socket->LocalIP() + client->socket->MyIP(), u"127.0.0.1127.0.0.1");
    EXPECT_EQ(client->socket->MyName(), u"deterministic");
    environment.Advance(60000);  // longer than the time-out
    EXPECT_EQ(client->log.size(), 2U);
}

TEST_F(Socket, AConnectionThatFailsIsReportedOnceAndLeavesNothingOpen) {
    struct Failure {
        std::function<void(DeterministicEnvironment&)> arrange;
        const char* event;
        StringView host = u"chat.example";
    };
    auto failing = [](Call call, std::int32_t error) {
        return [call, error](auto& e) { e.Fail(call, 1, error); };
    };
    auto nothing = [](auto&) {};
    auto unknown = [](auto& e) { e.RemoveHost("none.example"); };
    auto broadcast = [](auto& e) { e.AddHost("all.example", 0xFFFFFFFF); };
    for (const Failure& row :
         {Failure{[](auto& e) { e.RefuseConnections(10061); }, "error:10061:Connection refused."},
          {[](auto& e) { e.RefuseConnections(12345); }, "error:12345:"},
          {[](auto& e) { e.HoldConnections(true); }, "error:0:Timeout"},
          {unknown, "error:100:No valid Hostaddress", u"none.example"},
          {broadcast, "error:100:No valid Hostaddress", u"all.example"},
          {nothing, "error:100:No valid Hostaddress", StringView(u"127.0.0.1\0.example", 18)},
          {failing(Call::Create, 10024), "error:10024:Too many open files."},
          {failing(Call::Bind, 10048), "error:10048:Address already in use."},
          {failing(Call::Connect, 10051), "error:10051:Network is unreachable."}}) {
        for (bool secure : {false, true}) {
            DeterministicEnvironment fresh;
            row.arrange(fresh);
            auto client = SocketRecorder::Create();
            client->socket->SSLEnable(secure);
            client->socket->RemoteHost(row.host);
            client->socket->TimeOut(700);
            client->socket->Connect();
            fresh.Advance(5000);
            EXPECT_EQ(client->log, Log{row.event}) << secure;
            EXPECT_EQ(client->socket->State(), row.host == u"chat.example" ? sockClosed : sockConnecting);
            EXPECT_EQ(fresh.OpenSockets() + fresh.RunningTimers(), 0U) << row.event;
        }
    }
}

TEST_F(Socket, WhatIsNotTakenWaitsInOrderAndIsReportedWhenItHasGone) {
    auto client = Connected();
    std::string numbers;
    for (int i = 0; i < 40000; ++i) numbers += std::to_string(i) + ',';
    environment.LimitWrites(7001);
    client->socket->SendBytes(numbers);
    environment.BlockWrites(true);
    client->socket->SendData(u"one ");
    client->socket->SendBytes(numbers);
    environment.DoEvents();
    EXPECT_EQ(environment.Peer().TakeHeard(), numbers);
    EXPECT_EQ(client->log, Log());
    environment.BlockWrites(false);
    client->socket->SendData(u"three");
    environment.DoEvents();
    EXPECT_EQ(environment.Peer().TakeHeard(), "one " + numbers + "three");
    EXPECT_EQ(client->log, Log{"sent"});
}

TEST_F(Socket, WireTextGoesOutByteForByte) {
    auto client = Connected();
    client->socket->SendData(u"\u00E9\u20AC\u00FF");
    client->socket->SendData(u"");
    client->socket->SendBytes({"\0\n", 2});
    EXPECT_EQ(environment.Peer().Heard(), std::string("\xE9?\xFF\0\n", 5));
}

TEST_F(Socket, ASendThatFailsForGoodDropsTheQueueAndTheClosingReportsIt) {
    auto client = Connected();
    environment.BlockWrites(true);
    client->socket->SendData(u"never read");
    environment.Peer().CloseWith(SOCKERR_Reset);
    environment.BlockWrites(false);
    environment.DoEvents();
    EXPECT_EQ(environment.Peer().Heard(), "");
    EXPECT_EQ(client->log, (Log{"closed", "sent"}));
}

TEST_F(Socket, AHandlerThatDisconnectsOrConnectsAgainLeavesTheOldConnectionBehind) {
    environment.LimitReads(2);
    for (bool again : {false, true}) {
        auto client = Connected();
        std::size_t former = environment.PeerCount() - 1;
        client->on["data"] = [&] { again ? client->socket->Connect() : client->socket->Disconnect(); };
        environment.Peer().Say("abcd");
        environment.DoEvents();
        EXPECT_EQ(client->log, again ? (Log{"data:ab", "connect", "sent"}) : Log{"data:ab"});
        EXPECT_TRUE(environment.Peer(former).ClientClosed());
        EXPECT_EQ(environment.OpenSockets(), again ? 1U : 0U);
    }
}

TEST_F(Socket, APeerThatNeverStopsLeavesOthersTheirTurn) {
    auto busy = Connected();
    auto quiet = Connected();
    std::size_t readBefore = 0;
    quiet->on["data"] = [&] { readBefore = busy->received.size(); };
    environment.Peer(0).Say(std::string(1'000'000, 'x'));
    environment.Peer(0).Close();
    environment.Peer(1).Say("me too");
    environment.DoEvents();
    EXPECT_EQ(readBefore, 64000U);
    EXPECT_EQ(busy->received.size(), 1'000'000U);
    EXPECT_EQ(busy->log.back(), "closed");
}

TEST_F(Socket, AHandlerMayDropTheLastReference) {
    for (const char* event : {"connect", "data", "closed", "sent", "error"}) {
        if (event == std::string("error")) environment.RefuseConnections(SOCKERR_Refused);
        auto client = SocketRecorder::Connecting();
        std::weak_ptr<cSocketSSL> socket = client->socket;
        client->on[event] = [&] { client->socket.reset(); };
        environment.DoEvents();
        if (!socket.expired()) {
            environment.Peer().Say("abc");
            environment.Peer().Close();
            environment.DoEvents();
        }
        EXPECT_TRUE(socket.expired()) << event;
        EXPECT_EQ(environment.OpenSockets(), 0U) << event;
        EXPECT_EQ(environment.OpenWindows(), 0U) << event;
    }
}

TEST_F(Socket, WhatAListenerCannotDoIsReported) {
    auto listener = SocketRecorder::Create();
    listener->socket->Listen();
    auto second = SocketRecorder::Create();
    second->socket->LocalPort(listener->socket->LocalPort());
    second->socket->Listen();
    second->socket->Accept(AcceptConnection(listener->socket->SocketHandle()));  // nobody has come
    EXPECT_EQ(second->log,
              (Log{"error:10048:Address already in use.", "error:10038:Socket operation on nonsocket."}));
    EXPECT_EQ(second->socket->State(), sockClosed);
}

}  // namespace
}  // namespace quorix::testing_net
