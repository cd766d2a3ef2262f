// A socket and its events through automation, over the loopback.
#include <gtest/gtest.h>

#include <olectl.h>
#include <winsock.h>

#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

enum : DISPID { kConnect = 1, kClosed, kSendComplete, kDataArrival, kLineDataArrival, kError, kRequest };

TEST(SocketObject, DeliversTextsBytesAndTheEnd) {
    const Late listener = Late::Create(L"Quorix.cSocketSSL");
    const Late client = Late::Create(L"Quorix.cSocketSSL");
    const Late server = Late::Create(L"Quorix.cSocketSSL");
    listener.Do(L"Listen");
    const Connection waiting(listener), events(client);
    client.Put(L"RemoteHost", Of(L"127.0.0.1"));
    client.Put(L"RemotePort", listener.Get(L"LocalPort"));
    client.Do(L"Connect");
    ASSERT_TRUE(PumpUntil([&] { return waiting->Saw(kRequest) && events->Saw(kConnect); }));
    const SOCKET accepted = accept(static_cast<SOCKET>(listener.Get(L"SocketHandle").lVal), nullptr, nullptr);
    server.Do(L"Accept", {Of(static_cast<int>(accepted))});

    server.Do(L"SendData", {Of(L"hello")});
    ASSERT_TRUE(PumpUntil([&] { return events->Saw(kDataArrival); }));
    EXPECT_EQ(events->arguments[kDataArrival], (std::vector<std::string>{"hello", "127.0.0.1"}));
    server.Do(L"SendData", {quorix::automation::BytesVariant(std::string("\0\xff", 2))});
    ASSERT_TRUE(PumpUntil([&] { return events->arguments[kDataArrival][0].size() == 2; }));
    EXPECT_EQ(events->arguments[kDataArrival][0], std::string("\0\xff", 2));
    server.Do(L"Disconnect");
    ASSERT_TRUE(PumpUntil([&] { return events->Saw(kClosed); }));
    EXPECT_EQ(events->thread, GetCurrentThreadId());
}

TEST(SocketObject, RefersToValuesAsEachKindOfSinkReadsThem) {
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    Connection script(socket);
    Connection compiled(socket, DefaultEventsOf(socket));
    socket.Put(L"RemoteHost", Of(L"no.such.host.invalid"));
    socket.Do(L"Connect");
    ASSERT_TRUE(PumpUntil([&] { return script->Saw(kError) && compiled->Saw(kError); }));
    EXPECT_EQ(script->types[kError], (std::vector<VARTYPE>{VT_BYREF | VT_VARIANT, VT_BYREF | VT_VARIANT}));
    EXPECT_EQ(compiled->types[kError], (std::vector<VARTYPE>{VT_BYREF | VT_I4, VT_BYREF | VT_BSTR}));
    const std::vector<std::string> expected = {"100", "No valid Hostaddress"};
    EXPECT_EQ(script->arguments[kError], expected);
    EXPECT_EQ(compiled->arguments[kError], expected);
}

TEST(SocketObject, GoesOnWhenASinkFailsOrDisappears) {
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    Connection failing(socket);
    Connection gone(socket);
    Connection last(socket);
    failing->at[kError] = [](DISPPARAMS&) { return E_FAIL; };
    gone->at[kError] = [](DISPPARAMS&) { return RPC_E_DISCONNECTED; };
    socket.Put(L"RemoteHost", Of(L"no.such.host.invalid"));
    socket.Do(L"Connect");
    ASSERT_TRUE(PumpUntil([&] { return last->Saw(kError); }));
    socket.Do(L"Connect");
    ASSERT_TRUE(PumpUntil([&] { return last->events.size() == 2; }));
    EXPECT_EQ(failing->events.size(), 2U);
    EXPECT_EQ(gone->events.size(), 1U) << "not called again";
    EXPECT_EQ(gone.Cut(), CONNECT_E_NOCONNECTION);
}

TEST(SocketObject, AcceptsOnlySinks) {
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    const ComPtr<IConnectionPoint> point = ConnectionPointOf(socket);
    DWORD cookie = 0;
    EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
    ComPtr<ITypeInfo> noSink;
    socket->GetTypeInfo(0, LOCALE_USER_DEFAULT, &noSink);
    EXPECT_EQ(point->Advise(noSink.Get(), &cookie), CONNECT_E_CANNOTCONNECT);
    EXPECT_EQ(point->Unadvise(17), CONNECT_E_NOCONNECTION);
}

TEST(SocketObject, OfASessionTellsItsEventsToTheSessionAlone) {
    const Late session = Late::Create(L"Quorix.cSession");
    const Late socket = session.Object(L"Socket");
    EXPECT_EQ(socket.Raw(), session.Object(L"Socket").Raw());
    const ComPtr<Sink> sink = quorix::automation::Adopt(new Sink);
    DWORD cookie = 0;
    EXPECT_EQ(ConnectionPointOf(socket)->Advise(sink.Get(), &cookie), CONNECT_E_CANNOTCONNECT);

    const Connection events(session);
    session.Put(L"ServerAddress", Of(L"no.such.host.invalid"));
    session.Do(L"Connect", {Of(false)});
    EXPECT_TRUE(PumpUntil([&] { return events->Saw(7); })) << "the session hears its socket still";
    EXPECT_EQ(events->types[7], (std::vector<VARTYPE>{VT_DISPATCH, VT_BSTR, VT_I2}));
}

}  // namespace
}  // namespace windowstest
