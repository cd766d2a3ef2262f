// The type library and the tables describe the same members.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "quorix/automation/TypeLibrary.h"
#include "quorix/scripting/Classes.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/session/cSession.h"
#include "tests/windows/support/Functions.h"

namespace quorix::automation {
namespace {

using scripting::Classes;
using windowstest::ForEachFunction;
using windowstest::NameOf;

// One member in words, so that a difference reads well.
std::string Signature(const std::string& name, WORD kind, std::size_t parameters, std::size_t optional) {
    return name + " kind " + std::to_string(kind) + " parameters " + std::to_string(parameters) +
           " optional " + std::to_string(optional);
}

unsigned OptionalCount(const FUNCDESC& function) {
    unsigned count = 0;
    for (SHORT i = 0; i < function.cParams; ++i) {
        if ((function.lprgelemdescParam[i].paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0) ++count;
    }
    return count;
}

std::set<std::string> DeclaredIn(ITypeInfo& info) {
    std::set<std::string> all;
    ForEachFunction(info, [&](const FUNCDESC& function) {
        WORD kind = static_cast<WORD>(function.invkind);
        if (kind == DISPATCH_PROPERTYPUTREF) kind = DISPATCH_PROPERTYPUT;
        all.insert(Signature(NameOf(info, function.memid), kind, static_cast<unsigned>(function.cParams),
                             OptionalCount(function)));
    });
    return all;
}

std::set<std::string> BoundIn(const ClassTable& table) {
    std::set<std::string> all;
    for (const Member& member : table.Members()) {
        const auto& parameters = member.parameters;
        const auto optional =
            std::count_if(parameters.begin(), parameters.end(), [](const auto& p) { return p.isOptional; });
        all.insert(Signature(member.name, DispatchKind(member), parameters.size(),
                             static_cast<std::size_t>(optional)));
    }
    return all;
}

TEST(TypeLibrary, DeclaresForEachClassExactlyTheMembersThatItsTableBinds) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    for (const ClassTable* table : Classes()) {
        SCOPED_TRACE(table->Name());
        const Declaration declared = FindDeclaration(*library.Get(), WideName(table->Name()));
        EXPECT_EQ(DeclaredIn(*declared.interfaceInfo.Get()), BoundIn(*table));
        EXPECT_EQ(BoundIn(*table).size(), table->Members().size()) << "a member stands twice in the table";
        EXPECT_EQ(declared.eventsInfo != nullptr, !table->Events().empty());
    }
}

// Calls `visit` with each type of the library and what it is.
template <class Visit>
void ForEachType(Visit visit) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> info;
        TYPEATTR* type = nullptr;
        library->GetTypeInfo(i, &info);
        info->GetTypeAttr(&type);
        visit(*info.Get(), static_cast<const TYPEATTR&>(*type));
        info->ReleaseTypeAttr(type);
    }
}

std::string HelpOf(ITypeInfo& info, MEMBERID member) {
    Variant text;
    text.vt = VT_BSTR;
    info.GetDocumentation(member, nullptr, &text.bstrVal, nullptr, nullptr);
    return windowstest::Words(text);
}

TEST(TypeLibrary, SaysWhatEachTypeAndMemberIs) {
    ForEachType([](ITypeInfo& info, const TYPEATTR& type) {
        EXPECT_NE(HelpOf(info, MEMBERID_NIL), "") << NameOf(info, MEMBERID_NIL);
        if (type.typekind != TKIND_DISPATCH) return;
        ForEachFunction(info, [&](const FUNCDESC& function) {
            EXPECT_NE(HelpOf(info, function.memid), "") << NameOf(info, function.memid);
        });
    });
}

TEST(TypeLibrary, HasATableForEachClassAndCreatesTheSameOnes) {
    std::map<std::string, bool> declared;
    std::map<std::string, bool> bound;
    ForEachType([&](ITypeInfo& info, const TYPEATTR& type) {
        if (type.typekind != TKIND_COCLASS) return;
        declared[NameOf(info, MEMBERID_NIL)] = (type.wTypeFlags & TYPEFLAG_FCANCREATE) != 0;
    });
    for (const ClassTable* table : Classes()) bound[table->Name()] = static_cast<bool>(table->Create());
    EXPECT_EQ(declared, bound);
}

TEST(TypeLibrary, DeclaresTheEnumerationsWithTheLibrarysOwnValues) {
    using Values = std::map<std::string, std::vector<std::int32_t>>;
    const Values expected = {
        {"eMode", {KV_Classic, KV_Modern}},
        {"eAuthType", {KV_AutoAuth, KV_ZeroKAuth, KV_DigestAuth, KV_PlainAuth}},
        {"eProxyType", {KV_NoProxy, KV_HTTPProxy, KV_SOCKS4Proxy, KV_SOCKS5Proxy}},
        {"eProxy_Authentication", {KV_SocksNoAuth, KV_SocksUserPass}},
        {"sockType", {sockClosed, sockListening, sockConnecting, sockConnected}},
        {"eSubType",
         {KV_Available, KV_UnAvailable, KV_Subscribe, KV_UnSubscribe, KV_Subscribe_Accept, KV_Subscribe_Deny,
          KV_Invisible}},
        {"eShowType", {KV_None, KV_chat, KV_Away, KV_ExtendedAway, KV_DND}},
        {"eSubscriptionType", {KV_Empty, KV_To, KV_From, KV_Both, KV_Remove}},
        {"eMsgType", {MSG_Normal, MSG_Chat, MSG_Headline, MSG_GroupChat, MSG_UnKnown}},
        {"eEvent", {KV_Offline, KV_Composing, KV_Displayed, KV_Delivered, KV_Cancelled}},
        {"eItemType", {KV_RosterItem, KV_AgentItem, KV_GroupChatItem, KV_Unknown}},
        {"eServerType", {KV_Public, KV_Private}},
    };
    Values declared;
    ForEachType([&](ITypeInfo& info, const TYPEATTR& type) {
        for (UINT v = 0; type.typekind == TKIND_ENUM && v < type.cVars; ++v) {
            VARDESC* constant = nullptr;
            info.GetVarDesc(v, &constant);
            declared[NameOf(info, MEMBERID_NIL)].push_back(constant->lpvarValue->lVal);
            info.ReleaseVarDesc(constant);
        }
    });
    EXPECT_EQ(declared, expected);
}

}  // namespace
}  // namespace quorix::automation
