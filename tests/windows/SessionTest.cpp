// A session through automation, against a real server: session_tests COMPONENT PORT TLSPORT CONTROLPORT
#include <gtest/gtest.h>

#include <winsock.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "tests/windows/support/Component.h"
#include "tests/windows/support/Late.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

enum Event : DISPID {
    kAuthorized = 1,
    kNewUserCreated = 2,
    kSocketError = 7,
    kDisConnected = 8,
    kMessage = 9,
    kRosterItem = 12,
    kRosterEnd = 13,
    kPresence = 14,
    kIncomingXML = 18,
    kOutgoingXML = 19,
    kIQError = 21,
};

int Port() { return Ports().at(0); }
int TlsPort() { return Ports().at(1); }

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
        session.Put(L"Port", Of(Port()));
        session.Put(L"username", Of(user));
        session.Put(L"Password", Of(L"secret"));
        session.Put(L"Resource", Of(L"here"));
        session.Put(L"KeepAlive", Of(false));
        session.Object(L"Socket").Put(L"TimeOut", Of(kPatience));
    }

    bool Connect(bool newUser) {
        events->arguments.erase(kAuthorized);
        session.Do(L"Connect", {Of(newUser)});
        const bool authorized = PumpUntil([&] { return events->Saw(kAuthorized); });
        if (!authorized) Explain();
        return authorized;
    }
    // What happened instead of what was waited for.
    void Explain() {
        for (DISPID event : events->events) printf("event %ld\n", static_cast<long>(event));
        for (Event event : {kSocketError, kIQError, kIncomingXML, kOutgoingXML}) {
            for (const std::string& text : events->arguments[event])
                printf("%ld: %s\n", static_cast<long>(event), text.c_str());
        }
    }
    bool Wait(Event event) {
        return PumpUntil([&] { return events->Saw(event); });
    }
    // The next event of that number, after forgetting those before.
    void Forget(Event event) { events->arguments.erase(event); }

    Late session = Late::Create(L"Quorix.cSession");
    Connection events;
};

TEST(Session, RegistersAnAccountLogsInAndChats) {
    Account alice(L"alice"), bob(L"bob");
    ASSERT_TRUE(alice.Connect(true));
    EXPECT_TRUE(alice.events->Saw(kNewUserCreated));
    EXPECT_EQ(alice.session.Text(L"Active"), "True");
    EXPECT_EQ(alice.session.Text(L"MyJid"), "alice@localhost");
    ASSERT_TRUE(bob.Connect(true));
    alice.session.Do(L"SendMyPresence");
    bob.session.Do(L"SendMyPresence");

    const Late message = alice.session.Object(
        L"CreateMessage",
        {Of(L"bob@localhost/here"), Of(1), Of(L"Gr\u00fc\u00dfe <\u20ac>"), Of(L"subject")});
    message.Do(L"SendMessage");
    ASSERT_TRUE(bob.Wait(kMessage));
    const Late received(bob.events->values[kMessage].at(0));
    EXPECT_EQ(received.Text(L"Body"), "Gr\u00fc\u00dfe <\u20ac>");
    EXPECT_EQ(received.Text(L"Subject"), "subject");
    EXPECT_EQ(received.Text(L"FromJid"), "alice@localhost/here");
    EXPECT_EQ(received.Text(L"MSG_Type"), "1");
    EXPECT_EQ(bob.events->thread, GetCurrentThreadId());

    alice.session.Do(L"Disconnect");
    bob.session.Do(L"Disconnect");
    EXPECT_TRUE(bob.events->Saw(kDisConnected));
    EXPECT_EQ(bob.session.Text(L"Active"), "False");
}

TEST(Session, KeepsTheRosterAndPresences) {
    Account carol(L"carol"), dave(L"dave");
    ASSERT_TRUE(carol.Connect(true));
    ASSERT_TRUE(dave.Connect(true));
    const Late contact = carol.session.Object(L"CreateRosterItem");
    contact.Put(L"JID", Of(L"dave@localhost"));
    contact.Put(L"NickName", Of(L"Dave"));
    contact.Do(L"AddGroup", {Of(L"Friends")});
    carol.session.Do(L"FetchRoster");
    ASSERT_TRUE(carol.Wait(kRosterEnd));
    contact.Do(L"Add");
    ASSERT_TRUE(carol.Wait(kRosterItem));
    EXPECT_EQ(carol.events->arguments[kRosterItem].at(1), "Nothing") << "no presence yet";

    const Late roster = carol.session.Object(L"Roster");
    ASSERT_EQ(roster.Text(L"Count"), "1");
    const Late stored = carol.session.Object(L"Roster", {Of(1)});
    EXPECT_EQ(stored.Raw(), Late(carol.events->values[kRosterItem].at(0)).Raw());
    EXPECT_EQ(stored.Text(L"JID"), "dave@localhost");
    EXPECT_EQ(stored.Object(L"Groups").Text(L"Item", {Of(1)}), "Friends");

    dave.session.Put(L"Status", Of(L"at work"));
    dave.session.Put(L"ShowType", Of(2));
    carol.session.Do(L"SendMyPresence");
    ASSERT_TRUE(carol.Wait(kPresence)) << "the server tells her of herself";
    dave.session.Do(L"SendPresence", {Of(L"carol@localhost/here"), Of(0), Of(L"direct")});
    ASSERT_TRUE(PumpUntil([&] {
        return carol.events->Saw(kPresence) &&
               Late(carol.events->values[kPresence].at(0)).Text(L"JID") == "dave@localhost";
    }));
    const std::vector<VARTYPE>& types = carol.events->types[kPresence];
    ASSERT_EQ(types.size(), 5U);
    EXPECT_EQ(types[1], VT_BYREF | VT_VARIANT);
    EXPECT_EQ(types[3], VT_BYREF | VT_VARIANT);
    EXPECT_EQ(carol.events->arguments[kPresence].at(1), "True");
    carol.session.Do(L"Disconnect");
    dave.session.Do(L"Disconnect");
}

TEST(Session, ReportsAWrongPassword) {
    Account erin(L"erin");
    ASSERT_TRUE(erin.Connect(true));
    erin.session.Do(L"Disconnect");
    erin.Forget(kDisConnected);
    erin.session.Put(L"Password", Of(L"wrong"));
    erin.session.Do(L"Connect", {Of(false)});
    ASSERT_TRUE(erin.Wait(kIQError));
    const Late element(erin.events->values[kIQError].at(0));
    EXPECT_EQ(element.Text(L"TagExists", {Of(L"not-authorized")}), "True") << element.Text(L"xml");
    EXPECT_EQ(erin.session.Text(L"Active"), "False");
    erin.session.Do(L"Disconnect");
}

TEST(Session, LogsInThroughTls) {
    Account frank(L"frank");
    frank.session.Put(L"UseSSL", Of(true));
    frank.session.Put(L"Port", Of(TlsPort()));
    EXPECT_TRUE(frank.Connect(true));
    frank.session.Do(L"Disconnect");
}

TEST(Session, ComesBackWhenTheServerDoes) {
    Account grace(L"grace");
    grace.session.Put(L"ReconnectInterval", Of(1));
    grace.session.Put(L"ReconnectAttempts", Of(1000));
    ASSERT_TRUE(grace.Connect(true));
    grace.Forget(kDisConnected);
    grace.Forget(kAuthorized);
    Ask("kill\n");
    ASSERT_TRUE(grace.Wait(kDisConnected));
    Ask("start\n");
    ASSERT_TRUE(grace.Wait(kAuthorized));
    EXPECT_EQ(grace.session.Text(L"Active"), "True");
    grace.session.Do(L"Disconnect");
}

TEST(Session, SaysNothingAndSendsNothingAfterDisconnect) {
    Account heidi(L"heidi");
    ASSERT_TRUE(heidi.Connect(true));
    heidi.session.Do(L"Disconnect");
    heidi.Forget(kOutgoingXML);
    EXPECT_EQ(heidi.session.Try(DISPATCH_METHOD, L"SendXML", {Of(L"<presence/>")}).code, S_OK);
    EXPECT_EQ(heidi.session.Try(DISPATCH_METHOD, L"Disconnect").code, S_OK);
    EXPECT_FALSE(heidi.events->Saw(kOutgoingXML));
}

TEST(Session, MayBeLetGoInsideItsOwnEvent) {
    {
        auto ivan = std::make_unique<Account>(L"ivan");
        Sink* sink = ivan->events.operator->();
        bool released = false;
        sink->AddRef();
        sink->at[kAuthorized] = [&] {
            ivan.reset();
            released = true;
            return S_OK;
        };
        ivan->session.Do(L"Connect", {Of(true)});
        EXPECT_TRUE(PumpUntil([&] { return released; }));
        sink->Release();
    }
    PumpUntil([] { return Component::IsUnused(); });
    EXPECT_TRUE(Component::IsUnused());
}

}  // namespace
}  // namespace windowstest
