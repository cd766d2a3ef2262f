// The entry points of the component, and its class factory.
#include <olectl.h>

#include <cwchar>

#include "quorix/automation/Object.h"
#include "quorix/automation/Registration.h"
#include "quorix/scripting/Classes.h"

namespace quorix::automation {
namespace {

class Factory : public Unknown<IClassFactory> {
public:
    explicit Factory(const ClassTable& table) : table_(table) {}

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** out) override {
        if (out == nullptr) return E_POINTER;
        *out = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        try {
            const ComPtr<IDispatch> made = Adopt<IDispatch>(Wrap(table_.MakeObject()));
            return made->QueryInterface(id, out);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        } catch (...) {
            return E_FAIL;
        }
    }

    STDMETHODIMP LockServer(WINBOOL lock) override {
        LoadCount() += lock ? 1 : -1;
        return S_OK;
    }

private:
    const ClassTable& table_;
};

const ClassTable* FindCreatable(REFCLSID classId) {
    for (const ClassTable* table : scripting::Classes()) {
        if (table->Create() && IsEqualCLSID(Bind(*table).Declared().classId, classId)) return table;
    }
    return nullptr;
}

template <class Body>
HRESULT Guarded(Body body) {
    try {
        return body();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

HRESULT RegisterOrNothing(Scope scope) {
    const HRESULT result = Register(scope);
    if (FAILED(result)) Unregister(scope);
    return result;
}

}  // namespace
}  // namespace quorix::automation

using namespace quorix::automation;

STDAPI DllGetClassObject(REFCLSID classId, REFIID id, void** out) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return Guarded([&] {
        const ClassTable* table = FindCreatable(classId);
        if (table == nullptr) return CLASS_E_CLASSNOTAVAILABLE;
        const ComPtr<IClassFactory> factory = Adopt<IClassFactory>(new Factory(*table));
        return factory->QueryInterface(id, out);
    });
}

STDAPI DllCanUnloadNow() { return LoadCount() == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
    return Guarded([] { return RegisterOrNothing(Scope::Machine); });
}

STDAPI DllUnregisterServer() {
    return Guarded([] { return Unregister(Scope::Machine); });
}

// "regsvr32 /n /i:user" registers for the current user alone.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
    const bool user = commandLine != nullptr && wcscmp(commandLine, L"user") == 0;
    if (!user && commandLine != nullptr && *commandLine != L'\0') return E_INVALIDARG;
    const Scope scope = user ? Scope::User : Scope::Machine;
    return Guarded([&] { return install ? RegisterOrNothing(scope) : Unregister(scope); });
}
