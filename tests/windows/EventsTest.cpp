// Each of the session's events arrives under its number, with the arguments that the type library declares.
#include <gtest/gtest.h>

#include "quorix/automation/Object.h"
#include "quorix/im/cMessage.h"
#include "quorix/im/cPresenceItem.h"
#include "quorix/im/cRosterItem.h"
#include "quorix/services/cAgentItem.h"
#include "quorix/services/cBrowseItem.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/services/cSearchResults.h"
#include "quorix/services/cVcard.h"
#include "quorix/session/cSession.h"
#include "tests/windows/support/Late.h"
#include "tests/windows/support/Sink.h"

namespace windowstest {
namespace {

using namespace quorix;
using E = SessionEvents;

// All 45 in their order, with something in each argument.
void RaiseAll(cSession& session) {
    const auto node = std::make_shared<cXML_Node>();
    const auto agent = std::make_shared<cAgentItem>();
    const auto message = std::make_shared<cMessage>(session.shared_from_this(), node);
    const auto contact = std::make_shared<cRosterItem>();
    const auto presence = std::make_shared<cPresenceItem>();
    const auto room = std::make_shared<cGroupChat>();
    const StringView text = u"text";
    session.Raise(&E::OnAuthorized);
    session.Raise(&E::OnNewUserCreated);
    session.Raise(&E::OnAgentBegin);
    session.Raise(&E::OnAgentItem, agent, node);
    session.Raise(&E::OnAgentEnd);
    session.Raise(&E::OnError, node, text, std::int16_t{404}, text);
    session.Raise(&E::OnSocketError, node, text, std::int16_t{10061});
    session.Raise(&E::OnDisConnected);
    session.Raise(&E::OnMessage, message);
    session.Raise(&E::OnMessageEvent, true, 3, text);
    session.Raise(&E::OnRosterBegin);
    session.Raise(&E::OnRosterItem, contact, presence, node);
    session.Raise(&E::OnRosterEnd);
    session.Raise(&E::OnPresence, presence, true, text, 2, node);
    session.Raise(&E::OnSubscriptionRequest, text, 2, text);
    session.Raise(&E::OnSubscriptionAccept, text, text);
    session.Raise(&E::OnSubscriptionDenied, text, text);
    session.Raise(&E::OnIncomingXML, text);
    session.Raise(&E::OnOutgoingXML, text);
    session.Raise(&E::OnIQ, node);
    session.Raise(&E::OnIQError, node, text, std::int16_t{401}, text);
    session.Raise(&E::OnIQResult, node, text);
    session.Raise(&E::OnVCardResult, std::make_shared<cVcard>(), text, node);
    session.Raise(&E::OnGetLastRequest, text, text);
    session.Raise(&E::OnLastSeenResult, node, text, 70000);
    session.Raise(&E::OnTimeRequest, text, text);
    session.Raise(&E::OnTimeResult, text, text, text);
    session.Raise(&E::OnVersionRequest, text, text);
    session.Raise(&E::OnVersionResult, text, text, text, text);
    session.Raise(&E::OnGroupChat, room, text, node);
    session.Raise(&E::OnGroupChatItem, std::make_shared<cBrowseItem>(), text, node);
    session.Raise(&E::OnSearchFields, std::make_shared<cSearchFields>());
    session.Raise(&E::OnSearchResults, std::make_shared<cSearchResults>());
    session.Raise(&E::OnAccountRemoved, text, text);
    session.Raise(&E::OnChangedPassword);
    session.Raise(&E::OnChatServerBrowseResult, room, node);
    session.Raise(&E::OnChatRoomBrowseResult, text, node);
    session.Raise(&E::OnOOBRequest, text, text, text);
    session.Raise(&E::OnOOBResult, text, true);
    session.Raise(&E::OnGCInvite10, text, text, text, text, node);
    session.Raise(&E::OnWhoisOnlineStart);
    session.Raise(&E::OnWhoisOnlineUser, presence);
    session.Raise(&E::OnWhoisOnlineEnd);
    session.Raise(&E::OnGatewayInfo, node, text);
    session.Raise(&E::OnReceiveRosterItem, contact, text);
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
    ComPtr<ITypeInfo> info = automation::Bind(automation::TableOf<cSession>()).Declared().eventsInfo;
    Connection sink(object, DefaultEventsOf(object));
    RaiseAll(*session);
    ASSERT_EQ(sink->events.size(), 45U);
    for (UINT i = 0; i < 45; ++i) {
        FUNCDESC* function = nullptr;
        BSTR name = nullptr;
        const auto id = static_cast<DISPID>(i + 1);
        EXPECT_EQ(sink->events[i], id);
        ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
        EXPECT_EQ(function->memid, id);
        info->GetDocumentation(id, &name, nullptr, nullptr, nullptr);
        std::vector<VARTYPE> declared;
        for (SHORT p = 0; p < function->cParams; ++p) {
            declared.push_back(CarriedAs(*info.Get(), function->lprgelemdescParam[p].tdesc));
        }
        EXPECT_EQ(sink->types[id], declared)
            << id << " " << Words(automation::StringVariant(automation::Narrow(name)));
        SysFreeString(name);
        info->ReleaseFuncDesc(function);
    }
    FUNCDESC* more = nullptr;
    EXPECT_NE(info->GetFuncDesc(45, &more), S_OK);
}

TEST_F(Events, GiveScriptsFlagsAndKindsToRead) {
    Connection sink(object);
    RaiseAll(*session);
    EXPECT_EQ(sink->arguments[10], (std::vector<std::string>{"True", "3", "text"}));
    EXPECT_EQ(sink->arguments[14], (std::vector<std::string>{"Object", "True", "text", "2", "Object"}));
    EXPECT_EQ(sink->types[10][1], VT_BYREF | VT_VARIANT);
}

TEST_F(Events, LeaveNoReferencesBehind) {
    const unsigned long before = object.References();
    Connection sink(object);
    const unsigned long connected = object.References();
    sink->at[1] = [&] {
        EXPECT_EQ(object.Text(L"Active"), "False") << "called from inside the event";
        session->Raise(&E::OnNewUserCreated);
        return E_FAIL;
    };
    session->Raise(&E::OnAuthorized);
    EXPECT_EQ(sink->events, (std::vector<DISPID>{1, 2}));
    EXPECT_EQ(object.References(), connected);
    sink.Cut();
    EXPECT_EQ(object.References(), before);
}

TEST_F(Events, StopWhenTheSinkLeavesOrTheSessionEnds) {
    Connection first(object);
    Connection second(object);
    first->at[1] = [&] {
        second.Cut();
        return S_OK;
    };
    session->Raise(&E::OnAuthorized);
    EXPECT_TRUE(second->events.empty()) << "cut off by the sink before it";
    first.Cut();
    session->Raise(&E::OnAuthorized);
    EXPECT_EQ(first->events.size(), 1U);
}

}  // namespace
}  // namespace windowstest
