#include "quorix/automation/Registration.h"

#include <olectl.h>

#include <string>

#include "quorix/automation/TypeLibrary.h"
#include "quorix/scripting/Classes.h"

// Exported by the system, and in its import library, but not declared in the headers at hand.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib*, OLECHAR*, OLECHAR*);
extern "C" HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID, WORD, WORD, LCID, SYSKIND);

namespace quorix::automation {
namespace {

using Text = std::wstring;

Text Printed(REFGUID id) {
    wchar_t text[40] = {};
    StringFromGUID2(id, text, 40);
    return text;
}

class Hive {
public:
    explicit Hive(Scope scope) : root_(scope == Scope::Machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER) {}

    // Writes one text; an empty `name` is the key's own value.
    void Write(const Text& key, const Text& name, const Text& value) {
        HKEY opened = nullptr;
        const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
        Check(RegCreateKeyExW(root_, Path(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &opened, nullptr));
        if (opened == nullptr) return;
        Check(RegSetValueExW(opened, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                             size));
        RegCloseKey(opened);
    }

    void Delete(const Text& key) {
        const LSTATUS status = RegDeleteTreeW(root_, Path(key).c_str());
        if (status != ERROR_FILE_NOT_FOUND) Check(status);
    }

    HRESULT Result() const { return result_; }

private:
    static Text Path(const Text& key) { return L"Software\\Classes\\" + key; }
    void Check(LSTATUS status) {
        if (status != ERROR_SUCCESS && SUCCEEDED(result_)) result_ = HRESULT_FROM_WIN32(status);
    }

    HKEY root_;
    HRESULT result_ = S_OK;
};

struct Names {
    explicit Names(const BoundClass& bound)
        : program(L"Quorix." + WideName(bound.Table().Name())),
          classId(Printed(bound.Declared().classId)),
          classKey(L"CLSID\\" + classId) {}
    Text program;
    Text classId;
    Text classKey;
};

void Write(Hive& hive, const Names& names, const Text& libraryId) {
    hive.Write(names.program, L"", names.program);
    hive.Write(names.program + L"\\CLSID", L"", names.classId);
    hive.Write(names.classKey, L"", names.program);
    hive.Write(names.classKey + L"\\InprocServer32", L"", ModulePath());
    hive.Write(names.classKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    hive.Write(names.classKey + L"\\ProgID", L"", names.program);
    hive.Write(names.classKey + L"\\Programmable", L"", L"");
    hive.Write(names.classKey + L"\\TypeLib", L"", libraryId);
}

void Delete(Hive& hive, const Names& names) {
    hive.Delete(names.program);
    hive.Delete(names.classKey);
}

// The identity of the type library, while in scope.
class LibraryAttributes {
public:
    explicit LibraryAttributes(ITypeLib* library) : library_(library) {
        if (FAILED(library->GetLibAttr(&attributes_))) throw std::bad_alloc();
    }
    ~LibraryAttributes() { library_->ReleaseTLibAttr(attributes_); }
    LibraryAttributes(const LibraryAttributes&) = delete;
    LibraryAttributes& operator=(const LibraryAttributes&) = delete;
    const TLIBATTR* operator->() const { return attributes_; }

private:
    ITypeLib* library_;
    TLIBATTR* attributes_ = nullptr;
};

}  // namespace

HRESULT Register(Scope scope) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    const LibraryAttributes attributes(library.Get());
    Hive hive(scope);
    for (const ClassTable* table : scripting::Classes()) {
        if (table->Create()) Write(hive, Names(Bind(*table)), Printed(attributes->guid));
    }
    Text path = ModulePath();
    const HRESULT result = (scope == Scope::Machine ? RegisterTypeLib : RegisterTypeLibForUser)(
        library.Get(), path.data(), nullptr);
    return SUCCEEDED(hive.Result()) && FAILED(result) ? SELFREG_E_TYPELIB : hive.Result();
}

HRESULT Unregister(Scope scope) {
    const ComPtr<ITypeLib> library = LoadOwnTypeLibrary();
    const LibraryAttributes attributes(library.Get());
    Hive hive(scope);
    for (const ClassTable* table : scripting::Classes()) {
        if (table->Create()) Delete(hive, Names(Bind(*table)));
    }
    (scope == Scope::Machine ? UnRegisterTypeLib : UnRegisterTypeLibForUser)(
        attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid,
        attributes->syskind);
    return hive.Result();
}

}  // namespace quorix::automation
