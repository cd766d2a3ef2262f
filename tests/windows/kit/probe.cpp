// kit_probe [FOLDER MANIFEST]: ends with 0 when a program can make a session and set a property of it; with a
// folder, as a program of that folder that has the manifest and for which nothing is registered.
#include <oaidl.h>

#include <cstdio>
#include <string>

namespace {

bool Activate(const wchar_t* folder, const wchar_t* manifest) {
    const std::wstring path = std::wstring(folder) + L"\\" + manifest;
    ACTCTXW context = {};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    context.lpSource = path.c_str();
    context.lpAssemblyDirectory = folder;
    ULONG_PTR cookie = 0;
    HANDLE handle = CreateActCtxW(&context);
    return handle != INVALID_HANDLE_VALUE && ActivateActCtx(handle, &cookie);
}

HRESULT SetPort(IDispatch& session) {
    wchar_t port[] = L"Port";
    LPOLESTR names[] = {port};
    DISPID id = 0, put = DISPID_PROPERTYPUT;
    if (HRESULT result = session.GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id)) return result;
    VARIANT value;
    value.vt = VT_I2;
    value.iVal = 5222;
    DISPPARAMS parameters = {&value, &put, 1, 1};
    return session.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &parameters, nullptr,
                          nullptr, nullptr);
}

HRESULT UseSession() {
    CLSID id;
    if (HRESULT result = CLSIDFromProgID(L"Quorix.cSession", &id)) return result;
    void* made = nullptr;
    if (HRESULT result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made))
        return result;
    auto* session = static_cast<IDispatch*>(made);
    const HRESULT result = SetPort(*session);
    session->Release();
    return result;
}

}  // namespace

int wmain(int count, wchar_t** values) {
    if (count == 3 && !Activate(values[1], values[2])) {
        std::printf("the manifest is not taken: %lu\n", GetLastError());
        return 1;
    }
    CoInitialize(nullptr);
    const HRESULT result = UseSession();
    std::printf("%08lx\n", static_cast<unsigned long>(result));
    CoUninitialize();
    return SUCCEEDED(result) ? 0 : 1;
}
