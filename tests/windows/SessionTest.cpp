// A session through automation, against a real server: session_tests COMPONENT PORT TLSPORT CONTROLPORT
#include <gtest/gtest.h>

#include <winsock.h>

#include <stdexcept>

#include "tests/windows/support/Component.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

enum Event : DISPID { kAuthorized = 1, kDisConnected = 8, kMessage = 9, kOutgoingXML = 19 };

// Asks the machine that runs the server for something, and waits until it is done.
void Ask(const char* request) {
    const SOCKET control = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<u_short>(Ports().at(2)));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    char answer[8];
    if (connect(control, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        send(control, request, lstrlenA(request), 0) < 0 || recv(control, answer, sizeof answer, 0) <= 0) {
        throw std::runtime_error("no answer to a request");
    }
    closesocket(control);
}

// One account of the server, made by registering it, and the events of its session.
struct Account {
    explicit Account(const wchar_t* user) : events(session) {
        session.Put(L"ServerAddress", Of(L"localhost"));
        session.Put(L"Port", Of(Ports().at(0)));
        session.Put(L"username", Of(user));
        session.Put(L"Password", Of(L"secret"));
        session.Put(L"Resource", Of(L"here"));
        session.Put(L"KeepAlive", Of(false));
        session.Object(L"Socket").Put(L"TimeOut", Of(kPatience));
    }

    bool Register() {
        session.Do(L"Connect", {Of(true)});
        return Wait(kAuthorized);
    }
    bool Wait(Event event) {
        return PumpUntil([&] { return events->Saw(event); });
    }
    // Waits for the next of these, not for those before.
    void Forget(Event event) { events->arguments.erase(event); }

    void Send(const wchar_t* to, const wchar_t* text) {
        session.Object(L"CreateMessage", {Of(to), Of(1), Of(text), Of(L"subject")}).Do(L"SendMessage");
    }
    Late Received() { return Late(events->values[kMessage].at(0)); }

    Late session = Late::Create(L"Quorix.cSession");
    Connection events;
};

TEST(Session, RegistersAnAccountLogsInAndChats) {
    Account alice(L"alice"), bob(L"bob");
    ASSERT_TRUE(alice.Register());
    ASSERT_TRUE(bob.Register());
    bob.session.Do(L"SendMyPresence");

    alice.Send(L"bob@localhost/here", L"Gr\u00fc\u00dfe <\u20ac>");
    ASSERT_TRUE(bob.Wait(kMessage));
    EXPECT_EQ(bob.Received().Text(L"Body"), "Gr\u00fc\u00dfe <\u20ac>");
    EXPECT_EQ(bob.Received().Text(L"FromJid"), "alice@localhost/here");
    EXPECT_EQ(bob.events->thread, GetCurrentThreadId());

    bob.session.Do(L"Disconnect");
    EXPECT_TRUE(bob.events->Saw(kDisConnected));
    EXPECT_EQ(bob.session.Text(L"Active"), "False");
    bob.Forget(kOutgoingXML);
    EXPECT_EQ(bob.session.Try(DISPATCH_METHOD, L"SendXML", {Of(L"<presence/>")}).code, S_OK);
    EXPECT_EQ(bob.session.Try(DISPATCH_METHOD, L"Disconnect").code, S_OK);
    EXPECT_FALSE(bob.events->Saw(kOutgoingXML));
}

TEST(Session, CarriesMoreThanFitsIntoAnyBufferThroughTls) {
    Account frank(L"frank");
    frank.session.Put(L"UseSSL", Of(true));
    frank.session.Put(L"Port", Of(Ports().at(1)));
    ASSERT_TRUE(frank.Register());
    const std::wstring many(500000, L'x');
    frank.Send(L"frank@localhost/here", many.c_str());
    ASSERT_TRUE(frank.Wait(kMessage));
    EXPECT_EQ(frank.Received().Text(L"Body"), Utf8(many.c_str()));
}

TEST(Session, ComesBackWhenTheServerDoes) {
    Account grace(L"grace");
    grace.session.Put(L"ReconnectInterval", Of(1));
    grace.session.Put(L"ReconnectAttempts", Of(1000));
    ASSERT_TRUE(grace.Register());
    grace.Forget(kAuthorized);
    Ask("kill\n");
    ASSERT_TRUE(grace.Wait(kDisConnected));
    Ask("start\n");
    ASSERT_TRUE(grace.Wait(kAuthorized));
    EXPECT_EQ(grace.session.Text(L"Active"), "True");
}

TEST(Session, MayBeLetGoInsideItsOwnEvent) {
    auto ivan = std::make_unique<Account>(L"ivan");
    ComPtr<Sink> sink = ivan->events.operator->();
    sink->at[kAuthorized] = [&](DISPPARAMS&) {
        ivan.reset();
        return S_OK;
    };
    ivan->session.Do(L"Connect", {Of(true)});
    EXPECT_TRUE(PumpUntil([&] { return ivan == nullptr; }));
    sink.Reset();  // it keeps what it was told
    EXPECT_TRUE(PumpUntil([] { return Component::IsUnused(); }));
}

}  // namespace
}  // namespace windowstest
