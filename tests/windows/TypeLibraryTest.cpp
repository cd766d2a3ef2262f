// The type library and the tables describe the same members.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "quorix/automation/Classes.h"
#include "quorix/automation/TypeLibrary.h"
#include "quorix/services/cGroupChat.h"
#include "quorix/session/cSession.h"
#include "tests/windows/support/Functions.h"

namespace quorix::automation {
namespace {

using windowstest::ForEachFunction;
using windowstest::NameOf;

// One member in words, so that a difference reads well.
std::string Signature(const std::wstring& name, WORD kind, unsigned parameters, unsigned optional) {
    return std::string(name.begin(), name.end()) + " kind " + std::to_string(kind) + " parameters " +
           std::to_string(parameters) + " optional " + std::to_string(optional);
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
        all.insert(Signature(member.name, member.kind, member.arguments, member.optional));
    }
    return all;
}

TEST(TypeLibrary, DeclaresForEachClassExactlyTheMembersThatItsTableBinds) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    for (const ClassTable* table : Classes()) {
        SCOPED_TRACE(std::string(table->Name(), table->Name() + wcslen(table->Name())));
        const Declaration declared = FindDeclaration(*library.Get(), table->Name());
        EXPECT_EQ(DeclaredIn(*declared.interfaceInfo.Get()), BoundIn(*table));
        EXPECT_EQ(BoundIn(*table).size(), table->Members().size()) << "a member stands twice in the table";
        EXPECT_EQ(declared.eventsInfo != nullptr, static_cast<bool>(table->Events()));
    }
}

TEST(TypeLibrary, HasATableForEachClass) {
    std::set<std::wstring> declared;
    std::set<std::wstring> bound;
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        TYPEKIND kind = TKIND_MAX;
        ComPtr<ITypeInfo> info;
        library->GetTypeInfoType(i, &kind);
        library->GetTypeInfo(i, &info);
        if (kind == TKIND_COCLASS) declared.insert(NameOf(*info.Get(), MEMBERID_NIL));
    }
    for (const ClassTable* table : Classes()) bound.insert(table->Name());
    EXPECT_EQ(declared, bound);
}

TEST(TypeLibrary, LetsClientsCreateExactlyTheClassesThatTheTablesCreate) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    for (const ClassTable* table : Classes()) {
        TYPEATTR* type = nullptr;
        const Declaration declared = FindDeclaration(*library.Get(), table->Name());
        declared.classInfo->GetTypeAttr(&type);
        EXPECT_EQ((type->wTypeFlags & TYPEFLAG_FCANCREATE) != 0, static_cast<bool>(table->Create()))
            << std::string(table->Name(), table->Name() + wcslen(table->Name()));
        declared.classInfo->ReleaseTypeAttr(type);
    }
}

using Constants = std::map<std::string, std::int32_t>;

std::string Ascii(const std::wstring& text) { return {text.begin(), text.end()}; }

std::map<std::string, Constants> DeclaredEnumerations() {
    std::map<std::string, Constants> all;
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> info;
        TYPEATTR* type = nullptr;
        library->GetTypeInfo(i, &info);
        info->GetTypeAttr(&type);
        for (UINT v = 0; type->typekind == TKIND_ENUM && v < type->cVars; ++v) {
            VARDESC* constant = nullptr;
            info->GetVarDesc(v, &constant);
            all[Ascii(NameOf(*info.Get(), MEMBERID_NIL))][Ascii(NameOf(*info.Get(), constant->memid))] =
                constant->lpvarValue->lVal;
            info->ReleaseVarDesc(constant);
        }
        info->ReleaseTypeAttr(type);
    }
    return all;
}

TEST(TypeLibrary, DeclaresTheEnumerationsWithTheLibrarysOwnValues) {
    std::map<std::string, Constants> expected;
#define QUORIX_CONSTANT(enumeration, name) expected[#enumeration][#name] = enumeration::name
    QUORIX_CONSTANT(eAuthType, KV_AutoAuth);
    QUORIX_CONSTANT(eAuthType, KV_ZeroKAuth);
    QUORIX_CONSTANT(eAuthType, KV_DigestAuth);
    QUORIX_CONSTANT(eAuthType, KV_PlainAuth);
    QUORIX_CONSTANT(eProxyType, KV_NoProxy);
    QUORIX_CONSTANT(eProxyType, KV_HTTPProxy);
    QUORIX_CONSTANT(eProxyType, KV_SOCKS4Proxy);
    QUORIX_CONSTANT(eProxyType, KV_SOCKS5Proxy);
    QUORIX_CONSTANT(eProxy_Authentication, KV_SocksNoAuth);
    QUORIX_CONSTANT(eProxy_Authentication, KV_SocksUserPass);
    QUORIX_CONSTANT(sockType, sockClosed);
    QUORIX_CONSTANT(sockType, sockListening);
    QUORIX_CONSTANT(sockType, sockConnecting);
    QUORIX_CONSTANT(sockType, sockConnected);
    QUORIX_CONSTANT(eSubType, KV_Available);
    QUORIX_CONSTANT(eSubType, KV_UnAvailable);
    QUORIX_CONSTANT(eSubType, KV_Subscribe);
    QUORIX_CONSTANT(eSubType, KV_UnSubscribe);
    QUORIX_CONSTANT(eSubType, KV_Subscribe_Accept);
    QUORIX_CONSTANT(eSubType, KV_Subscribe_Deny);
    QUORIX_CONSTANT(eSubType, KV_Invisible);
    QUORIX_CONSTANT(eShowType, KV_None);
    QUORIX_CONSTANT(eShowType, KV_chat);
    QUORIX_CONSTANT(eShowType, KV_Away);
    QUORIX_CONSTANT(eShowType, KV_ExtendedAway);
    QUORIX_CONSTANT(eShowType, KV_DND);
    QUORIX_CONSTANT(eSubscriptionType, KV_Empty);
    QUORIX_CONSTANT(eSubscriptionType, KV_To);
    QUORIX_CONSTANT(eSubscriptionType, KV_From);
    QUORIX_CONSTANT(eSubscriptionType, KV_Both);
    QUORIX_CONSTANT(eSubscriptionType, KV_Remove);
    QUORIX_CONSTANT(eMsgType, MSG_Normal);
    QUORIX_CONSTANT(eMsgType, MSG_Chat);
    QUORIX_CONSTANT(eMsgType, MSG_Headline);
    QUORIX_CONSTANT(eMsgType, MSG_GroupChat);
    QUORIX_CONSTANT(eMsgType, MSG_UnKnown);
    QUORIX_CONSTANT(eEvent, KV_Offline);
    QUORIX_CONSTANT(eEvent, KV_Composing);
    QUORIX_CONSTANT(eEvent, KV_Displayed);
    QUORIX_CONSTANT(eEvent, KV_Delivered);
    QUORIX_CONSTANT(eEvent, KV_Cancelled);
    QUORIX_CONSTANT(eItemType, KV_RosterItem);
    QUORIX_CONSTANT(eItemType, KV_AgentItem);
    QUORIX_CONSTANT(eItemType, KV_GroupChatItem);
    QUORIX_CONSTANT(eItemType, KV_Unknown);
    QUORIX_CONSTANT(eServerType, KV_Public);
    QUORIX_CONSTANT(eServerType, KV_Private);
#undef QUORIX_CONSTANT
    EXPECT_EQ(DeclaredEnumerations(), expected);
}

}  // namespace
}  // namespace quorix::automation
