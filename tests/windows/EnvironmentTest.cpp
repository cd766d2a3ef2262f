// The ground floor on Windows: hidden windows, notifications, timers and the pump, over real sockets.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "quorix/platform/windows/HiddenWindows.h"
#include "tests/windows/support/Pump.h"

namespace quorix {
namespace {

using windows::kSocketMessage;
using windowstest::PumpFor;
using windowstest::PumpUntil;

Environment& System() { return SystemEnvironment(); }

// Writes down what it is told; reads what it can, unless it is told not to.
class Recorder : public SocketSink {
public:
    void OnSocketEvent(SocketId socket, std::int32_t event, std::int32_t error) override {
        events.push_back(event);
        errors.push_back(error);
        if (event == SOCK_Read && reads) Drain(socket);
        if (then) then();
    }
    void OnSocketTimer(SocketId) override { ++timers; }

    void Drain(SocketId socket) {
        char block[2000];
        for (Transfer got; (got = System().Receive(socket, block, sizeof block)).count > 0;) {
            received.append(block, static_cast<std::size_t>(got.count));
        }
    }
    bool Saw(std::int32_t event) const {
        return std::find(events.begin(), events.end(), event) != events.end();
    }

    std::vector<std::int32_t> events;
    std::vector<std::int32_t> errors;
    std::string received;
    std::function<void()> then;
    int timers = 0;
    bool reads = true;
};

// A socket with a window of its own.
struct Endpoint {
    Endpoint() : window(System().OpenWindow(sink)) {}
    ~Endpoint() {
        Close();
        System().CloseWindow(window);
    }
    Endpoint(const Endpoint&) = delete;
    Endpoint& operator=(const Endpoint&) = delete;

    void Select(SocketId id, std::int32_t events) {
        socket = id;
        EXPECT_EQ(System().AsyncSelect(socket, window, sink, events), SOCKERR_None);
    }
    void Close() {
        if (socket != 0) System().Close(socket);
        socket = 0;
    }
    HWND Handle() const { return reinterpret_cast<HWND>(window.handle); }

    Recorder sink;
    HiddenWindow window;
    SocketId socket = 0;
};

// Two connected sockets.
class Connected : public ::testing::Test {
protected:
    void SetUp() override {
        Endpoint listener;
        const SocketId listening = System().CreateSocket(false).id;
        ASSERT_EQ(System().Bind(listening, {}, true), SOCKERR_None);
        ASSERT_EQ(System().Listen(listening, 5), SOCKERR_None);
        listener.Select(listening, SOCK_Accept);
        client.Select(System().CreateSocket(false).id, SOCK_Read | SOCK_Write | SOCK_Connect | SOCK_Close);
        EXPECT_EQ(System().Connect(client.socket, {0x7F000001, System().LocalAddress(listening).port}),
                  SOCKERR_WouldBlock);
        ASSERT_TRUE(PumpUntil([&] { return listener.sink.Saw(SOCK_Accept); }));
        server.Select(System().Accept(listening).id, SOCK_Read | SOCK_Write | SOCK_Close);
        ASSERT_TRUE(PumpUntil([&] { return client.sink.Saw(SOCK_Connect); }));
    }

    Endpoint client;
    Endpoint server;
};

TEST(HiddenWindow, IsAnOrdinaryStaticWindowWithAProcedureOfOurs) {
    Recorder sink;
    HiddenWindow window = System().OpenWindow(sink);
    HWND handle = reinterpret_cast<HWND>(window.handle);
    ASSERT_NE(handle, nullptr);
    char text[32] = {};
    GetClassNameA(handle, text, sizeof text);
    EXPECT_STRCASEEQ(text, "static");
    GetWindowTextA(handle, text, sizeof text);
    EXPECT_STREQ(text, "tst") << "what is not ours reaches the previous procedure";
    EXPECT_EQ(GetWindowLongA(handle, GWL_STYLE) & 0x00CF0000, 0x00CF0000);
    EXPECT_FALSE(IsWindowVisible(handle));
    EXPECT_NE(GetWindowLongPtrA(handle, GWLP_WNDPROC), window.previousProcedure);
    System().CloseWindow(window);
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(window.handle, 0);
    System().CloseWindow(window);
}

TEST_F(Connected, CarriesBytesBothWaysAndReportsTheEndAfterTheLast) {
    const std::string many(300000, 'x');
    std::size_t sent = 0;
    client.sink.then = [&] {
        while (sent < many.size()) {
            const Transfer part = System().Send(client.socket, std::string_view(many).substr(sent));
            if (part.count < 0) {
                EXPECT_EQ(part.error, SOCKERR_WouldBlock);
                return;
            }
            sent += static_cast<std::size_t>(part.count);
        }
    };
    client.sink.then();
    ASSERT_TRUE(PumpUntil([&] { return server.sink.received.size() == many.size(); }));
    EXPECT_EQ(server.sink.received, many);

    client.sink.then = nullptr;
    server.sink.reads = false;
    System().Send(client.socket, "last words");
    ASSERT_TRUE(PumpUntil([&] { return server.sink.Saw(SOCK_Read); }));
    server.sink.reads = true;
    client.Close();
    ASSERT_TRUE(PumpUntil([&] { return server.sink.Saw(SOCK_Close); }));
    EXPECT_EQ(server.sink.received.substr(many.size()), "last words");
    EXPECT_EQ(server.sink.events.back(), SOCK_Close);
}

TEST_F(Connected, IsToldNothingMoreOnceClosed) {
    System().Send(server.socket, "too late");
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 500, QS_POSTMESSAGE);
    const SocketId number = client.socket;
    PostMessageA(client.Handle(), kSocketMessage, static_cast<WPARAM>(number + 4), SOCK_Read);
    client.Close();
    client.sink.events.clear();
    System().DoEvents();
    EXPECT_TRUE(client.sink.events.empty());
}

// Another process notices what the peer does, and may tell of it at any moment until the socket has gone.
TEST_F(Connected, LeavesNothingBehindForTheNextSocketOfItsNumber) {
    int left = 0;
    for (int round = 0; round < 50; ++round) {
        System().AsyncSelect(server.socket, server.window, server.sink, 0);
        std::atomic<bool> go = false;
        std::thread peer([&go, socket = static_cast<SOCKET>(std::exchange(server.socket, 0))] {
            while (!go) continue;
            closesocket(socket);
        });
        go = true;
        for (int delay = 0; delay < round * 100; ++delay) YieldProcessor();
        client.Close();
        MSG queued;
        left += PeekMessageA(&queued, client.Handle(), kSocketMessage, kSocketMessage, PM_REMOVE);
        peer.join();
        client.sink.events.clear();
        SetUp();
    }
    EXPECT_EQ(left, 0);
}

TEST_F(Connected, IgnoresMessagesThatAreNoNotificationsAndWhatASinkThrows) {
    client.sink.events.clear();
    const WPARAM own = static_cast<WPARAM>(client.socket);
    for (LPARAM event : {0, 33, 64, 0xFFFF}) SendMessageA(client.Handle(), kSocketMessage, own, event);
    SendMessageA(client.Handle(), kSocketMessage, own + 4, SOCK_Read);
    EXPECT_EQ(SendMessageA(client.Handle(), kSocketMessage, 0, SOCK_Read), 0);
    EXPECT_EQ(SendMessageA(client.Handle(), WM_GETTEXTLENGTH, 0, 0), 0) << "nothing without a socket";
    EXPECT_EQ(SendMessageA(client.Handle(), WM_GETTEXTLENGTH, own, 0), 3);
    EXPECT_TRUE(client.sink.events.empty());
    client.sink.then = [] { throw std::runtime_error("never seen by the system"); };
    SendMessageA(client.Handle(), kSocketMessage, own, SOCK_Write);
    EXPECT_EQ(client.sink.events, std::vector<std::int32_t>{SOCK_Write});
}

TEST_F(Connected, HasATimerThatEndsItselfWithItsFirstTick) {
    System().SetSocketTimer(client.socket, client.window, client.sink, 10);
    ASSERT_TRUE(PumpUntil([&] { return client.sink.timers > 0; }));
    PumpFor(100);
    EXPECT_EQ(client.sink.timers, 1);
    System().SetSocketTimer(client.socket, client.window, client.sink, 10);
    System().KillSocketTimer(client.socket, client.window);
    PumpFor(100);
    EXPECT_EQ(client.sink.timers, 1);
}

TEST(Sockets, ReportARefusedConnection) {
    Endpoint probe;
    const SocketId bound = System().CreateSocket(false).id;
    System().Bind(bound, {}, false);
    const std::uint16_t port = System().LocalAddress(bound).port;
    System().Close(bound);
    probe.Select(System().CreateSocket(false).id, SOCK_Connect);
    System().Connect(probe.socket, {0x7F000001, port});
    ASSERT_TRUE(PumpUntil([&] { return probe.sink.Saw(SOCK_Connect); }));
    EXPECT_EQ(probe.sink.errors.back(), SOCKERR_Refused);
}

}  // namespace
}  // namespace quorix
