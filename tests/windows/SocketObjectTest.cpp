// A socket and its events through automation, over the loopback.
#include <gtest/gtest.h>

#include <olectl.h>
#include <winsock.h>

#include "tests/windows/support/Component.h"
#include "tests/windows/support/Late.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

enum : DISPID { kConnect = 1, kClosed, kSendComplete, kDataArrival, kLineDataArrival, kError, kRequest };

// A listening socket and one connected to it.
struct Pair {
    Pair() {
        listener.Do(L"Listen");
        Connection waiting(listener);
        client.Put(L"RemoteHost", Of(L"127.0.0.1"));
        client.Put(L"RemotePort", listener.Get(L"LocalPort"));
        client.Do(L"Connect");
        EXPECT_TRUE(PumpUntil([&] { return waiting->Saw(kRequest); }));
        const SOCKET accepted =
            accept(static_cast<SOCKET>(listener.Get(L"SocketHandle").lVal), nullptr, nullptr);
        server.Do(L"Accept", {Of(static_cast<int>(accepted))});
        EXPECT_TRUE(PumpUntil([&] { return client.Text(L"State") == "4"; }));
    }
    Late listener = Late::Create(L"Quorix.cSocketSSL");
    Late client = Late::Create(L"Quorix.cSocketSSL");
    Late server = Late::Create(L"Quorix.cSocketSSL");
};

TEST(SocketObject, DeliversBytesTextsAndTheEnd) {
    Pair pair;
    Connection events(pair.client);
    pair.server.Do(L"SendData", {Of(L"hello")});
    ASSERT_TRUE(PumpUntil([&] { return events->Saw(kDataArrival); }));
    EXPECT_EQ(events->arguments[kDataArrival], (std::vector<std::string>{"hello", "127.0.0.1"}));

    pair.server.Do(L"SendData", {quorix::automation::BytesVariant(std::string("\0\xff", 2))});
    ASSERT_TRUE(PumpUntil([&] { return events->arguments[kDataArrival][0].size() == 2; }));
    EXPECT_EQ(events->arguments[kDataArrival][0], std::string("\0\xff", 2));

    pair.client.Put(L"LineSeparator", Of(L"\n"));
    pair.server.Do(L"SendData", {Of(12)});
    pair.server.Do(L"SendData", {Of(L"3\n")});
    ASSERT_TRUE(PumpUntil([&] { return events->Saw(kLineDataArrival); }));

    pair.server.Do(L"Disconnect");
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
    failing->at[kError] = [] { return E_FAIL; };
    gone->at[kError] = [] { return RPC_E_DISCONNECTED; };
    socket.Put(L"RemoteHost", Of(L"no.such.host.invalid"));
    socket.Do(L"Connect");
    ASSERT_TRUE(PumpUntil([&] { return last->Saw(kError); }));
    socket.Do(L"Connect");
    ASSERT_TRUE(PumpUntil([&] { return last->events.size() == 2; }));
    EXPECT_EQ(failing->events.size(), 2U);
    EXPECT_EQ(gone->events.size(), 1U) << "not called again";
    EXPECT_EQ(gone.Cut(), CONNECT_E_NOCONNECTION);
}

TEST(SocketObject, MayBeLetGoInsideItsOwnEvent) {
    ASSERT_TRUE(Component::IsUnused());
    Late socket = Late::Create(L"Quorix.cSocketSSL");
    auto events = std::make_unique<Connection>(socket);
    Sink* sink = events->operator->();
    bool released = false;
    sink->at[kError] = [&] {
        events->Cut();
        socket.Release();
        released = true;
        return S_OK;
    };
    socket.Put(L"RemoteHost", Of(L"no.such.host.invalid"));
    IDispatch* raw = socket.Raw();
    const DISPID connect = socket.Id(L"Connect");
    DISPPARAMS none = {};
    raw->Invoke(connect, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr);
    EXPECT_TRUE(PumpUntil([&] { return released; }));
    EXPECT_TRUE(Component::IsUnused());
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

    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> other;
    ASSERT_EQ(socket->QueryInterface(IID_PPV_ARGS(&container)), S_OK);
    EXPECT_EQ(container->FindConnectionPoint(IID_IStream, &other), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(Late::Create(L"Quorix.cXML_Node")->QueryInterface(IID_PPV_ARGS(&container)), E_NOINTERFACE);
}

TEST(SocketObject, ListsItsSinks) {
    const Late socket = Late::Create(L"Quorix.cSocketSSL");
    Connection first(socket);
    Connection second(socket);
    ComPtr<IEnumConnections> all;
    ASSERT_EQ(ConnectionPointOf(socket)->EnumConnections(&all), S_OK);
    CONNECTDATA found[3] = {};
    ULONG count = 0;
    EXPECT_EQ(all->Next(3, found, &count), S_FALSE);
    ASSERT_EQ(count, 2U);
    for (ULONG i = 0; i < count; ++i) found[i].pUnk->Release();
    EXPECT_EQ(second.Cut(), S_OK);
}

}  // namespace
}  // namespace windowstest
