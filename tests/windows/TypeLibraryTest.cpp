// The type library and the tables describe the same members.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "quorix/automation/Classes.h"
#include "quorix/automation/TypeLibrary.h"

namespace quorix::automation {
namespace {

// One member in words, so that a difference reads well.
std::string Signature(const std::wstring& name, WORD kind, unsigned parameters, unsigned optional) {
    return std::string(name.begin(), name.end()) + " kind " + std::to_string(kind) + " parameters " +
           std::to_string(parameters) + " optional " + std::to_string(optional);
}

std::wstring NameOf(ITypeInfo& info, MEMBERID id) {
    BSTR name = nullptr;
    info.GetDocumentation(id, &name, nullptr, nullptr, nullptr);
    std::wstring out = name != nullptr ? name : L"";
    SysFreeString(name);
    return out;
}

unsigned OptionalCount(const FUNCDESC& function) {
    unsigned count = 0;
    for (SHORT i = 0; i < function.cParams; ++i) {
        if ((function.lprgelemdescParam[i].paramdesc.wParamFlags & PARAMFLAG_FOPT) != 0) ++count;
    }
    return count;
}

// The members of IDispatch itself are listed among those of a dispatch interface, under numbers of their own.
bool IsInherited(MEMBERID id) {
    const auto range = static_cast<ULONG>(id) & 0xFFFF0000;
    return range == 0x60000000 || range == 0x60010000;
}

std::set<std::string> DeclaredIn(ITypeInfo& info) {
    std::set<std::string> all;
    TYPEATTR* type = nullptr;
    info.GetTypeAttr(&type);
    for (UINT i = 0; i < type->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        info.GetFuncDesc(i, &function);
        WORD kind = static_cast<WORD>(function->invkind);
        if (kind == DISPATCH_PROPERTYPUTREF) kind = DISPATCH_PROPERTYPUT;
        if (!IsInherited(function->memid)) {
            all.insert(Signature(NameOf(info, function->memid), kind,
                                 static_cast<unsigned>(function->cParams), OptionalCount(*function)));
        }
        info.ReleaseFuncDesc(function);
    }
    info.ReleaseTypeAttr(type);
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

}  // namespace
}  // namespace quorix::automation
