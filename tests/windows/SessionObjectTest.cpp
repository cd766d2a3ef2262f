// A session that is not connected, as automation clients see it.
#include <gtest/gtest.h>

#include <olectl.h>

#include "tests/windows/support/Late.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

constexpr WORD kCall = DISPATCH_METHOD;
constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr HRESULT kErrors = static_cast<HRESULT>(0x800A0000);

TEST(SessionObject, AnswersWhatCannotBeDoneWithItsError) {
    const Late session = Late::Create(L"Quorix.cSession");
    const Late contact = Late::Create(L"Quorix.cRosterItem");
    const Late login = Late::Create(L"Quorix.cAuth");
    struct Case {
        const char* what;
        Answer answer;
        HRESULT error;  // 0 for a call that succeeds
    };
    const Case cases[] = {
        {"sending while not connected", session.Try(kCall, L"SendXML", {Of(L"<a/>")}), S_OK},
        {"publishing no card", session.Try(kCall, L"UpdateVcard", {Nothing()}), S_OK},
        {"disconnecting twice", session.Try(kCall, L"Disconnect"), S_OK},
        {"joining no room", session.Try(kCall, L"SendGroupChatRequest", {Nothing(), Of(true)}), kErrors + 91},
        {"contacts of no message", session.Try(kCall, L"ParseReceiveRoster", {Nothing()}), kErrors + 91},
        {"a namespace without a colon", session.Try(kCall, L"StorePrivateData", {Of(L"a"), Of(L"b")}),
         kErrors + 5},
        {"reading what was never set", session.Try(kGet, L"ProxyUseRemoteDNS"), kErrors + 13},
        {"an empty roster", session.Try(kGet, L"Roster", {Of(1)}), kErrors + 9},
        {"a contact without a session", contact.Try(kCall, L"Add"), kErrors + 91},
        {"a login without a session", login.Try(kCall, L"SendAuth"), kErrors + 91},
        {"a group it is not in", contact.Try(kCall, L"RemoveGroup", {Of(L"none")}), kErrors + 5},
    };
    for (const Case& c : cases) EXPECT_EQ(c.answer.error, c.error) << c.what;
    EXPECT_EQ(session.Try(kCall, L"CreateMessage", {Of(L"a"), Of(L"chat"), Of(L""), Of(L"")}).code,
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(session.Try(DISPATCH_PROPERTYPUT, L"Port", {Of(40000)}).code, DISP_E_OVERFLOW);
    EXPECT_EQ(session.Try(DISPATCH_PROPERTYPUT, L"SessionID", {Of(L"x")}).code, DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(session.Text(L"getPrivateData", {Of(L"a:b")}), "Empty");
}

TEST(SessionObject, LendsItselfToRecordsWithoutBeingKept) {
    Late session = Late::Create(L"Quorix.cSession");
    const Late contact = Late::Create(L"Quorix.cRosterItem");
    contact.Do(L"SetSession", {Of(session.Raw())});
    EXPECT_EQ(session.References(), 1U);
    EXPECT_EQ(contact.Try(kCall, L"Add").code, S_OK);
    session.Release();
    EXPECT_EQ(contact.Try(kCall, L"Add").error, kErrors + 91);
    contact.Do(L"SetSession", {Nothing()});
}

TEST(SessionObject, ListsTheRoomsThatItIsIn) {
    const Late session = Late::Create(L"Quorix.cSession");
    const Late room = Late::Create(L"Quorix.cGroupChat");
    room.Put(L"JID", Of(L"tea@rooms.example.org"));
    session.Do(L"SendGroupChatRequest", {Of(room.Raw()), Of(true)});
    EXPECT_EQ(session.Object(L"Rooms", {Of(1)}).Raw(), room.Raw());
    EXPECT_EQ(session.Text(L"FindGroupChat", {Of(L"tea@rooms.example.org")}), "1");
    EXPECT_EQ(session.Text(L"FindItemType", {Of(L"tea@rooms.example.org")}), "2");
    session.Object(L"Rooms").Do(L"Remove", {Of(1)});
    EXPECT_EQ(session.Text(L"FindGroupChat", {Of(L"tea@rooms.example.org")}), "0");
}

TEST(SessionObject, KeepsTheEventsOfItsSocketToItself) {
    Late session = Late::Create(L"Quorix.cSession");
    const Late socket = session.Object(L"Socket");
    EXPECT_EQ(socket.Raw(), session.Object(L"Socket").Raw());
    const ComPtr<IConnectionPoint> point = ConnectionPointOf(socket);
    const ComPtr<Sink> sink = quorix::automation::Adopt(new Sink);
    DWORD cookie = 0;
    EXPECT_EQ(point->Advise(sink.Get(), &cookie), CONNECT_E_CANNOTCONNECT);

    const Connection events(session);
    session.Put(L"ServerAddress", Of(L"no.such.host.invalid"));
    session.Do(L"Connect", {Of(false)});
    EXPECT_TRUE(PumpUntil([&] { return events->Saw(7); })) << "the session hears its socket still";
}

TEST(SessionObject, ShowsItsCollectionsAsOneObjectEach) {
    const Late session = Late::Create(L"Quorix.cSession");
    for (const wchar_t* name :
         {L"Roster", L"Presence", L"Agents", L"Rooms", L"SearchFields", L"Searchresults"}) {
        const Late collection = session.Object(name);
        EXPECT_EQ(collection.Text(L"Count"), "0") << name;
        EXPECT_EQ(collection.Raw(), session.Object(name).Raw()) << name;
    }
    Late contacts = session.Object(L"CreateRosterItem").Object(L"Groups");
    contacts.Do(L"Add", {Of(L"Friends")});
    EXPECT_EQ(contacts.Try(kCall, L"Add", {Of(L"Friends")}).error, kErrors + 457);
    EXPECT_EQ(contacts.Text(L"Item", {Of(L"Friends")}), "Friends");
    contacts.Do(L"Remove", {Of(1)});
    EXPECT_EQ(contacts.Text(L"Count"), "0");
}

}  // namespace
}  // namespace windowstest
