// The component under test, loaded from its file.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace windowstest {

class Component {
public:
    // Loads `path`, given once by the test program.
    static void Load(const std::wstring& path);

    // An exported function of the component.
    template <class Function>
    static Function Entry(const char* name) {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(Find(name)));
    }

    static HRESULT Register() { return Entry<HRESULT(WINAPI*)()>("DllRegisterServer")(); }
    static HRESULT Unregister() { return Entry<HRESULT(WINAPI*)()>("DllUnregisterServer")(); }
    static HRESULT Install(bool install, const wchar_t* commandLine) {
        return Entry<HRESULT(WINAPI*)(BOOL, LPCWSTR)>("DllInstall")(install, commandLine);
    }
    static HRESULT GetClassObject(REFCLSID classId, REFIID id, void** out) {
        return Entry<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>("DllGetClassObject")(classId, id, out);
    }

    // True when no object of the component is left.
    static bool IsUnused() { return Entry<HRESULT(WINAPI*)()>("DllCanUnloadNow")() == S_OK; }

private:
    static FARPROC Find(const char* name);
};

// The ports that the command line names, for the tests that need a server.
std::vector<int>& Ports();

}  // namespace windowstest
