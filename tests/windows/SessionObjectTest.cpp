// A session that is not connected, as automation clients see it.
#include <gtest/gtest.h>

#include <olectl.h>

#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

constexpr HRESULT kObjectNotSet = static_cast<HRESULT>(0x800A0000 + 91);

TEST(SessionObject, LendsItselfToRecordsWithoutBeingKept) {
    Late session = Late::Create(L"Quorix.cSession");
    const Late contact = Late::Create(L"Quorix.cRosterItem");
    EXPECT_EQ(contact.Try(DISPATCH_METHOD, L"Add").error, kObjectNotSet);
    contact.Do(L"SetSession", {Of(session.Raw())});
    EXPECT_EQ(session.References(), 1U);
    EXPECT_EQ(contact.Try(DISPATCH_METHOD, L"Add").code, S_OK);
    session.Release();
    EXPECT_EQ(contact.Try(DISPATCH_METHOD, L"Add").error, kObjectNotSet);
}

TEST(SessionObject, KeepsTheEventsOfItsSocketToItself) {
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
}

}  // namespace
}  // namespace windowstest
