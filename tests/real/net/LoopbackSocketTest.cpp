// The socket on the system's own sockets and message loop.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <array>
#include <ctime>

#include "quorix/net/mSocketSSL.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/platform/posix/SocketError.h"
#include "tests/real/RunUntil.h"
#include "tests/unit/net/SocketRecorder.h"

namespace quorix::real {
namespace {

using testing_net::Log;
using testing_net::SocketRecorder;

// A listener that hands its next connection to `server`, and a client.
class Loopback : public ::testing::Test {
protected:
    Loopback() {
        listener->on["request"] = [this] {
            server->socket->Accept(AcceptConnection(listener->socket->SocketHandle()));
        };
        listener->socket->Listen();
        client->socket->RemoteHost(u"localhost");
        client->socket->RemotePort(listener->socket->LocalPort());
    }

    void Establish() {
        client->socket->Connect();
        ASSERT_TRUE(RunUntil([&] { return client->log.size() >= 2 && !server->log.empty(); }));
        EXPECT_EQ(client->TakeLog(), (Log{"connect", "sent"}));
        EXPECT_EQ(server->TakeLog(), Log{"sent"});
    }

    std::shared_ptr<SocketRecorder> listener = SocketRecorder::Create();
    std::shared_ptr<SocketRecorder> server = SocketRecorder::Create();
    std::shared_ptr<SocketRecorder> client = SocketRecorder::Create();
};

// Readable within that time, in milliseconds.
bool HasWork(int milliseconds) {
    pollfd loop = {MessageLoop::Descriptor(), POLLIN, 0};
    return poll(&loop, 1, milliseconds) == 1;
}

template <class Done>
bool HostUntil(Done done) {
    while (!done()) {
        if (!HasWork(5000)) return false;
        MessageLoop::Dispatch();
    }
    return true;
}

TEST_F(Loopback, RunsInALoopThatWaitsForOneDescriptorAndSleepsThereWhenIdle) {
    client->socket->Connect();
    ASSERT_TRUE(HostUntil([&] { return client->log.size() >= 2 && !server->log.empty(); }));
    client->socket->SendData(u"question");
    server->on["data"] = [&] { server->socket->SendData(u"answer"); };
    ASSERT_TRUE(HostUntil([&] { return client->received == "answer"; }));

    int ticks = 0;
    Environment& environment = Environment::Current();
    const TimerId timer = environment.SetTimer(30, [&] { ++ticks; });
    ASSERT_TRUE(HostUntil([&] { return ticks == 2; }));
    environment.KillTimer(timer);
    int turns = 0;
    while (HasWork(50) && ++turns < 10) MessageLoop::Dispatch();
    EXPECT_LT(turns, 10) << "nothing is left to do";
}

TEST_F(Loopback, CarriesBytesBothWaysAlsoForAPumpInsideAHandlerAndCloses) {
    Establish();
    EXPECT_EQ(client->socket->RemoteHost(), u"127.0.0.1");
    EXPECT_EQ(client->socket->RemotePort(), listener->socket->LocalPort());
    EXPECT_EQ(client->socket->LocalIP(), u"127.0.0.1");
    server->on["data"] = [&] {
        if (server->received != "question") return;
        server->socket->SendData(u"answer");
        EXPECT_TRUE(RunUntil([&] { return server->received == "question!"; }));
        server->socket->Disconnect();
    };
    client->on["data"] = [&] { client->socket->SendData(u"!"); };
    client->socket->SendData(u"question");
    ASSERT_TRUE(RunUntil([&] { return client->log.size() >= 2; }));
    EXPECT_EQ(server->log, (Log{"data:question", "data:!"}));
    EXPECT_EQ(client->log, (Log{"data:answer", "closed"}));
}

// A reset would take the last word from a peer that has not read it yet.
TEST_F(Loopback, ClosingWithUnreadBytesIsNoReset) {
    Establish();
    server->on["data"] = [&] {
        server->socket->SendData(u"good-bye");
        server->socket->Disconnect();
    };
    SocketId peer = client->socket->SocketHandle();
    client->socket->SocketHandle(0);  // read below, by bare calls
    std::string unread(5000, 'x');
    send(peer, unread.data(), unread.size(), 0);
    ASSERT_TRUE(RunUntil([&] { return !server->log.empty(); }));
    std::array<char, 100> heard;
    EXPECT_EQ(recv(peer, heard.data(), heard.size(), 0), 8);
    EXPECT_EQ(recv(peer, heard.data(), heard.size(), 0), 0);
    Environment::Current().Close(peer);
}

TEST_F(Loopback, AResetIsAClosing) {
    Establish();
    linger atOnce{1, 0};
    setsockopt(server->socket->SocketHandle(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    server->socket->Disconnect();
    ASSERT_TRUE(RunUntil([&] { return !client->log.empty(); }));
    EXPECT_EQ(client->log, Log{"closed"});
    client->socket->SendData(u"nobody takes this, and no signal is raised");
    EXPECT_TRUE(RunUntil([&] { return true; }));
    EXPECT_EQ(client->log, Log{"closed"});
}

TEST_F(Loopback, WhatNobodyServesCostsNoTime) {
    Establish();
    auto ignored = SocketRecorder::Create();
    listener->on.clear();  // a connection waits, and nobody accepts it
    ignored->socket->RemoteHost(u"127.0.0.1");
    ignored->socket->RemotePort(listener->socket->LocalPort());
    ignored->socket->Connect();
    server->socket->Disconnect();  // a closed connection is kept open on this side
    ASSERT_TRUE(RunUntil([&] { return client->log == Log{"closed"} && !ignored->log.empty(); }));
    const std::clock_t before = std::clock();
    RunUntil([] { return false; }, 1);
    EXPECT_LT(std::clock() - before, 0.3 * CLOCKS_PER_SEC);
    EXPECT_EQ(std::count(listener->log.begin(), listener->log.end(), "request"), 2);
}

#ifndef QUORIX_SANITIZED  // the sanitizers need descriptors themselves
TEST_F(Loopback, AListenerOutOfDescriptorsRestsAndThenTakesTheConnection) {
    rlimit usual{};
    getrlimit(RLIMIT_NOFILE, &usual);
    rlimit none{3, usual.rlim_max};
    auto requests = [&] { return std::count(listener->log.begin(), listener->log.end(), "request"); };
    client->socket->Connect();
    setrlimit(RLIMIT_NOFILE, &none);
    RunUntil([] { return false; }, 1);
    setrlimit(RLIMIT_NOFILE, &usual);
    EXPECT_GE(requests(), 1);
    EXPECT_LE(requests(), 2);
    client->socket->SendData(u"still here");
    EXPECT_TRUE(RunUntil([&] { return server->received == "still here"; }));
}
#endif

TEST_F(Loopback, ALateByteFindsNoSocketUnderTheSameNumber) {
    Establish();
    server->socket->SendData(u"late");
    SocketId number = client->socket->SocketHandle();
    client->socket->Disconnect();
    auto next = SocketRecorder::Create();
    next->socket->RemoteHost(u"127.0.0.1");
    next->socket->RemotePort(listener->socket->LocalPort());
    next->socket->Connect();
    EXPECT_EQ(next->socket->SocketHandle(), number);
    ASSERT_TRUE(RunUntil([&] { return next->log.size() >= 2; }));
    EXPECT_EQ(next->log, (Log{"connect", "sent"}));
    EXPECT_EQ(client->log, Log());
}

TEST(SystemErrors, WhatNetworksForbidHasANumber) {
    EXPECT_EQ(SocketErrorFromErrno(EPERM), 10013);  // a firewall's word
    EXPECT_EQ(SocketErrorFromErrno(ENOMEM), 10055);
}

}  // namespace
}  // namespace quorix::real
