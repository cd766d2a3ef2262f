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

bool IsNamed(ITypeInfo& type, const wchar_t* name) {
    BSTR own = nullptr;
    Require(type.GetDocumentation(MEMBERID_NIL, &own, nullptr, nullptr, nullptr));
    const bool same = std::wstring_view(own) == name;
    SysFreeString(own);
    return same;
}

ComPtr<ITypeInfo> FindClass(ITypeLib& library, const wchar_t* name) {
    for (unsigned i = 0; i < library.GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> type;
        Require(library.GetTypeInfo(i, &type));
        if (Attributes(type.Get())->typekind == TKIND_COCLASS && IsNamed(*type.Get(), name)) return type;
    }
    throw std::logic_error("the type library lacks a class");
}

DISPID NumberOf(ITypeInfo& interfaceInfo, const wchar_t* name) {
    LPOLESTR asked = const_cast<wchar_t*>(name);
    DISPID id = DISPID_UNKNOWN;
    return SUCCEEDED(interfaceInfo.GetIDsOfNames(&asked, 1, &id)) ? id : DISPID_UNKNOWN;
}

}  // namespace

BoundClass::BoundClass(const ClassTable& table, Declaration declaration)
    : table_(table), declaration_(std::move(declaration)) {
    for (const Member& member : table.Members()) {
        members_.emplace(NumberOf(*declaration_.interfaceInfo.Get(), member.name), &member);
    }
}

const Member* BoundClass::Find(DISPID id, WORD kinds) const {
    // Scripts cannot tell a property from a method, nor setting an object from assigning it.
    if ((kinds & kReading) != 0) kinds |= kReading;
    if ((kinds & DISPATCH_PROPERTYPUTREF) != 0) kinds |= DISPATCH_PROPERTYPUT;
    for (auto [at, end] = members_.equal_range(id); at != end; ++at) {
        if ((at->second->kind & kinds) != 0) return at->second;
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

Declaration FindDeclaration(ITypeLib& library, const wchar_t* className) {
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
        entry = std::make_unique<BoundClass>(table, FindDeclaration(*library.Get(), table.Name()));
    }
    return *entry;
}

}  // namespace quorix::automation
