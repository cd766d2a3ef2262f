// Each of the session's events arrives under its number, with the arguments that the type library declares.
#include <gtest/gtest.h>

#include "quorix/automation/Object.h"
#include "quorix/link/SessionLink.h"
#include "quorix/session/cSession.h"
#include "tests/windows/support/Functions.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

using namespace quorix;
using E = SessionEvents;

// Calls them one after the other, with an empty value for each argument.
template <class... Events>
void RaiseEach(SessionLink& session, Events... events) {
    const auto raise = [&]<class... Arguments>(void (E::*event)(Arguments...)) {
        session.Raise(event, std::remove_cvref_t<Arguments>{}...);
    };
    (raise(events), ...);
}

// All in the order of their numbers.
void RaiseAll(SessionLink& session) {
    RaiseEach(session, &E::OnAuthorized, &E::OnNewUserCreated, &E::OnAgentBegin, &E::OnAgentItem,
              &E::OnAgentEnd, &E::OnError, &E::OnSocketError, &E::OnDisConnected, &E::OnMessage,
              &E::OnMessageEvent, &E::OnRosterBegin, &E::OnRosterItem, &E::OnRosterEnd, &E::OnPresence,
              &E::OnSubscriptionRequest, &E::OnSubscriptionAccept, &E::OnSubscriptionDenied,
              &E::OnIncomingXML, &E::OnOutgoingXML, &E::OnIQ, &E::OnIQError, &E::OnIQResult,
              &E::OnVCardResult, &E::OnGetLastRequest, &E::OnLastSeenResult, &E::OnTimeRequest,
              &E::OnTimeResult, &E::OnVersionRequest, &E::OnVersionResult, &E::OnGroupChat,
              &E::OnGroupChatItem, &E::OnSearchFields, &E::OnSearchResults, &E::OnAccountRemoved,
              &E::OnChangedPassword, &E::OnChatServerBrowseResult, &E::OnChatRoomBrowseResult,
              &E::OnOOBRequest, &E::OnOOBResult, &E::OnGCInvite10, &E::OnWhoisOnlineStart,
              &E::OnWhoisOnlineUser, &E::OnWhoisOnlineEnd, &E::OnGatewayInfo, &E::OnReceiveRosterItem);
}

// The type of a VARIANT that carries a value declared so. Interfaces and enumerations are named types.
VARTYPE CarriedAs(ITypeInfo& info, const TYPEDESC& declared) {
    if (declared.vt == VT_PTR) {
        const VARTYPE to = CarriedAs(info, *declared.lptdesc);
        return to == VT_DISPATCH ? to : static_cast<VARTYPE>(to | VT_BYREF);
    }
    if (declared.vt != VT_USERDEFINED) return declared.vt;
    ComPtr<ITypeInfo> named;
    TYPEATTR* type = nullptr;
    info.GetRefTypeInfo(declared.hreftype, &named);
    named->GetTypeAttr(&type);
    const VARTYPE carried = type->typekind == TKIND_DISPATCH ? VT_DISPATCH : VT_I4;
    named->ReleaseTypeAttr(type);
    return carried;
}

class Events : public ::testing::Test {
protected:
    const std::shared_ptr<cSession> session = cSession::Create();
    const Late object{automation::ToVariant(session)};
};

TEST_F(Events, ArriveUnderTheirNumbersWithTheDeclaredArguments) {
    const ComPtr<ITypeInfo> info = DefaultEventsInfoOf(object);
    Connection sink(object, DefaultEventsOf(object));
    RaiseAll(*LinkOf(session));
    ASSERT_EQ(sink->events.size(), 45U);
    DISPID number = 0;
    ForEachFunction(*info.Get(), [&](const FUNCDESC& function) {
        const DISPID id = function.memid;
        EXPECT_EQ(id, ++number);
        EXPECT_EQ(sink->events.at(static_cast<std::size_t>(id) - 1), id);
        std::vector<VARTYPE> declared;
        for (SHORT p = 0; p < function.cParams; ++p) {
            declared.push_back(CarriedAs(*info.Get(), function.lprgelemdescParam[p].tdesc));
        }
        EXPECT_EQ(sink->types[id], declared) << id << " " << NameOf(*info.Get(), id);
    });
    EXPECT_EQ(number, 45);
}

TEST_F(Events, LeaveNoReferencesBehind) {
    const unsigned long before = object.References();
    Connection sink(object);
    const unsigned long connected = object.References();
    sink->at[1] = [&](DISPPARAMS&) {
        EXPECT_EQ(object.Text(L"Active"), "False") << "called from inside the event";
        LinkOf(session)->Raise(&E::OnNewUserCreated);
        return E_FAIL;
    };
    LinkOf(session)->Raise(&E::OnAuthorized);
    EXPECT_EQ(sink->events, (std::vector<DISPID>{1, 2}));
    EXPECT_EQ(object.References(), connected);
    sink.Cut();
    EXPECT_EQ(object.References(), before);
}

TEST_F(Events, StopWhenTheSinkLeaves) {
    Connection first(object);
    Connection second(object);
    first->at[1] = [&](DISPPARAMS&) { return second.Cut(); };
    LinkOf(session)->Raise(&E::OnAuthorized);
    EXPECT_TRUE(second->events.empty()) << "cut off by the sink before it";
    first.Cut();
    LinkOf(session)->Raise(&E::OnAuthorized);
    EXPECT_EQ(first->events.size(), 1U);
}

}  // namespace
}  // namespace windowstest
