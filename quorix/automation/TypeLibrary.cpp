#include "quorix/automation/TypeLibrary.h"

#include <memory>
#include <mutex>
#include <stdexcept>

namespace quorix::automation {
namespace {

constexpr WORD kReading = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

void Require(HRESULT result) {
    if (FAILED(result)) throw std::logic_error("the type library lacks a class");
}

// The attributes of a type, given back at the end of the scope.
class Attributes {
public:
    explicit Attributes(ITypeInfo* info) : info_(info) { Require(info->GetTypeAttr(&attributes_)); }
    ~Attributes() { info_->ReleaseTypeAttr(attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    const TYPEATTR* operator->() const { return attributes_; }

private:
    ITypeInfo* info_;
    TYPEATTR* attributes_ = nullptr;
};

ComPtr<ITypeInfo> ImplementedType(ITypeInfo& coclass, unsigned index) {
    HREFTYPE reference = 0;
    Require(coclass.GetRefTypeOfImplType(index, &reference));
    ComPtr<ITypeInfo> type;
    Require(coclass.GetRefTypeInfo(reference, &type));
    return type;
}

bool IsNamed(ITypeInfo& type, const std::wstring& name) {
    BSTR own = nullptr;
    Require(type.GetDocumentation(MEMBERID_NIL, &own, nullptr, nullptr, nullptr));
    const bool same = std::wstring_view(own) == name;
    SysFreeString(own);
    return same;
}

ComPtr<ITypeInfo> FindClass(ITypeLib& library, const std::wstring& name) {
    for (unsigned i = 0; i < library.GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> type;
        Require(library.GetTypeInfo(i, &type));
        if (Attributes(type.Get())->typekind == TKIND_COCLASS && IsNamed(*type.Get(), name)) return type;
    }
    throw std::logic_error("the type library lacks a class");
}

DISPID NumberOf(ITypeInfo& interfaceInfo, std::wstring name) {
    LPOLESTR asked = name.data();
    DISPID id = DISPID_UNKNOWN;
    return SUCCEEDED(interfaceInfo.GetIDsOfNames(&asked, 1, &id)) ? id : DISPID_UNKNOWN;
}

// Which parameters of each event a sink gets by reference, by the event's number.
std::map<DISPID, std::vector<bool>> ReferencesIn(ITypeInfo& eventsInfo) {
    std::map<DISPID, std::vector<bool>> all;
    for (UINT i = 0; i < Attributes(&eventsInfo)->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        Require(eventsInfo.GetFuncDesc(i, &function));
        std::vector<bool>& referenced = all[function->memid];
        for (SHORT p = 0; p < function->cParams; ++p) {
            referenced.push_back((function->lprgelemdescParam[p].paramdesc.wParamFlags & PARAMFLAG_FOUT) !=
                                 0);
        }
        eventsInfo.ReleaseFuncDesc(function);
    }
    return all;
}

}  // namespace

WORD DispatchKind(const Member& member) {
    switch (member.kind) {
        case scripting::MemberKind::Get: return DISPATCH_PROPERTYGET;
        case scripting::MemberKind::Put: return DISPATCH_PROPERTYPUT;
        default: return DISPATCH_METHOD;
    }
}

BoundClass::BoundClass(const ClassTable& table, Declaration declaration)
    : table_(table), declaration_(std::move(declaration)) {
    for (const Member& member : table.Members()) {
        members_.emplace(NumberOf(*declaration_.interfaceInfo.Get(), WideName(member.name)), &member);
    }
    if (table.Events().empty()) return;
    const auto references = ReferencesIn(*declaration_.eventsInfo.Get());
    for (const scripting::Event& event : table.Events()) {
        const DISPID id = NumberOf(*declaration_.eventsInfo.Get(), WideName(event.name));
        events_.emplace(&event, DeclaredEvent{id, references.at(id)});
    }
}

const Member* BoundClass::Find(DISPID id, WORD kinds) const {
    // Scripts cannot tell a property from a method, nor setting an object from assigning it.
    if ((kinds & kReading) != 0) kinds |= kReading;
    if ((kinds & DISPATCH_PROPERTYPUTREF) != 0) kinds |= DISPATCH_PROPERTYPUT;
    for (auto [at, end] = members_.equal_range(id); at != end; ++at) {
        if ((DispatchKind(*at->second) & kinds) != 0) return at->second;
    }
    return nullptr;
}

std::wstring ModulePath() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ModulePath), &module);
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

ComPtr<ITypeLib> LoadOwnTypeLibrary() {
    ComPtr<ITypeLib> library;
    Require(LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &library));
    return library;
}

Declaration FindDeclaration(ITypeLib& library, const std::wstring& className) {
    Declaration found;
    found.classInfo = FindClass(library, className);
    const Attributes attributes(found.classInfo.Get());
    found.classId = attributes->guid;
    for (unsigned i = 0; i < attributes->cImplTypes; ++i) {
        int flags = 0;
        Require(found.classInfo->GetImplTypeFlags(i, &flags));
        ComPtr<ITypeInfo> type = ImplementedType(*found.classInfo.Get(), i);
        const bool source = (flags & IMPLTYPEFLAG_FSOURCE) != 0;
        (source ? found.eventsId : found.interfaceId) = Attributes(type.Get())->guid;
        (source ? found.eventsInfo : found.interfaceInfo) = type;
    }
    return found;
}

const BoundClass& Bind(const ClassTable& table) {
    static std::mutex mutex;
    static std::map<const ClassTable*, std::unique_ptr<const BoundClass>> bound;
    std::lock_guard lock(mutex);
    auto& entry = bound[&table];
    if (!entry) {
        const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
        entry = std::make_unique<BoundClass>(table, FindDeclaration(*library.Get(), WideName(table.Name())));
    }
    return *entry;
}

}  // namespace quorix::automation
