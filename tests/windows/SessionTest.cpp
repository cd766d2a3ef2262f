// A session through automation, against a real server: session_tests COMPONENT PORT TLSPORT
#include <gtest/gtest.h>

#include "tests/windows/support/Component.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

enum Event : DISPID { kAuthorized = 1, kMessage = 9 };

TEST(Session, CarriesMoreThanFitsIntoAnyBufferThroughTls) {
    const Late frank = Late::Create(L"Quorix.cSession");
    const Connection events(frank);
    frank.Put(L"ServerAddress", Of(L"localhost"));
    frank.Put(L"Port", Of(Ports().at(1)));
    frank.Put(L"UseSSL", Of(true));
    frank.Put(L"username", Of(L"frank"));
    frank.Put(L"Password", Of(L"secret"));
    frank.Put(L"Resource", Of(L"here"));
    frank.Object(L"Socket").Put(L"TimeOut", Of(kPatience));
    frank.Do(L"Connect", {Of(true)});
    ASSERT_TRUE(PumpUntil([&] { return events->Saw(kAuthorized); }));
    const std::wstring many(500000, L'x');
    frank.Object(L"CreateMessage", {Of(L"frank@localhost/here"), Of(1), Of(many.c_str()), Of(L"")})
        .Do(L"SendMessage");
    ASSERT_TRUE(PumpUntil([&] { return events->Saw(kMessage); }));
    EXPECT_EQ(Late(events->values[kMessage].at(0)).Text(L"Body"), Utf8(many.c_str()));
}

}  // namespace
}  // namespace windowstest
