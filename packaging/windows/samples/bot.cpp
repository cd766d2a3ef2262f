// The same as bot.vbs, in C++ that knows no more of the component than names: late bound, for any compiler.
//
//   x86_64-w64-mingw32-g++ -municode bot.cpp -lole32 -loleaut32 -luuid      or      cl /EHsc bot.cpp
//   bot HOST PORT USER PASSWORD [create]
#include <ocidl.h>
#include <olectl.h>
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <initializer_list>
#include <string>
#include <vector>

#ifdef _MSC_VER
#pragma comment(lib, "ole32")
#pragma comment(lib, "oleaut32")
#pragma comment(lib, "user32")
#endif

namespace {

constexpr int kModern = 1, kPlainAuth = 3, kChat = 1, kGroupChat = 3, kTimeout = 408;
constexpr IID kSessionEvents = {0x83ab0c1e, 0x4dbf, 0x439f, {0x9e, 0x83, 0xbc, 0x13, 0x4d, 0xcc, 0xef, 0x77}};

// A value, freed with the object.
class Value {
public:
    Value() { VariantInit(&variant_); }
    Value(int number) : Value() { variant_.vt = VT_I4, variant_.lVal = number; }
    Value(const wchar_t* text) : Value() { variant_.vt = VT_BSTR, variant_.bstrVal = SysAllocString(text); }
    Value(const std::wstring& text) : Value(text.c_str()) {}
    Value(const Value& other) : Value() { VariantCopy(&variant_, const_cast<VARIANT*>(&other.variant_)); }
    Value& operator=(const Value& other) {
        VariantCopy(&variant_, const_cast<VARIANT*>(&other.variant_));
        return *this;
    }
    ~Value() { VariantClear(&variant_); }

    std::wstring Text() const {
        Value text;
        VariantChangeType(&text.variant_, const_cast<VARIANT*>(&variant_), 0, VT_BSTR);
        return text.variant_.vt == VT_BSTR && text.variant_.bstrVal ? text.variant_.bstrVal : L"";
    }
    int Number() const { return static_cast<int>(std::wcstol(Text().c_str(), nullptr, 10)); }

    // Calls, reads and writes a member of the object that this is, by its name.
    Value Call(const wchar_t* name, std::initializer_list<Value> arguments = {}) const {
        return Invoke(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
    }
    void Put(const wchar_t* name, const Value& value) const { Invoke(name, DISPATCH_PROPERTYPUT, {value}); }

    VARIANT variant_;

private:
    Value Invoke(const wchar_t* name, WORD kind, std::initializer_list<Value> arguments) const {
        std::vector<VARIANT> reversed;
        for (const Value* each = arguments.end(); each != arguments.begin();)
            reversed.push_back((--each)->variant_);
        DISPID id = 0, put = DISPID_PROPERTYPUT;
        auto* names = const_cast<wchar_t*>(name);
        DISPPARAMS parameters = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        if (kind == DISPATCH_PROPERTYPUT) parameters.rgdispidNamedArgs = &put, parameters.cNamedArgs = 1;
        Value result;
        IDispatch* object = variant_.vt == VT_DISPATCH ? variant_.pdispVal : nullptr;
        if (!object || FAILED(object->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id)) ||
            FAILED(object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &result.variant_,
                                  nullptr, nullptr))) {
            std::wprintf(L"%ls failed\n", name);
        }
        return result;
    }
};

// Hears the session's events by their numbers. It lives as long as the program.
class Bot : public IDispatch {
public:
    explicit Bot(const Value& session) : session_(session) {}

    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == kSessionEvents;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }

    STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        std::vector<Value> arguments(parameters->cArgs);
        for (UINT i = 0; i < parameters->cArgs; ++i) {
            VariantCopyInd(&arguments[i].variant_, &parameters->rgvarg[parameters->cArgs - 1 - i]);
        }
        switch (event) {
            case 1: OnAuthorized(); break;
            case 6: OnError(arguments[1].Text(), arguments[2].Number(), arguments[3].Text()); break;
            case 7: Say(L"Connection: " + arguments[1].Text()); break;
            case 8: loggedIn_ = false; break;
            case 9: OnMessage(arguments[0]); break;
            case 13: OnRosterEnd(); break;
            default: break;
        }
        return S_OK;
    }

private:
    static void Say(const std::wstring& text) {
        std::wprintf(L"%ls\n", text.c_str());
        std::fflush(stdout);
    }
    void OnAuthorized() {
        loggedIn_ = true;
        Say(L"Logged in as " + session_.Call(L"MyJid").Text());
        session_.Call(L"FetchRoster");
        session_.Call(L"SendMyPresence");
    }
    void OnRosterEnd() {
        const Value roster = session_.Call(L"Roster");
        for (int i = 1; i <= roster.Call(L"Count").Number(); ++i) {
            Say(L"Contact " + roster.Call(L"Item", {i}).Call(L"JID").Text());
        }
    }
    void OnMessage(const Value& message) {
        const std::wstring from = message.Call(L"FromJid").Text(), body = message.Call(L"Body").Text();
        if (message.Call(L"MSG_Type").Number() == kGroupChat || body.empty()) return;
        Say(from + L": " + body);
        if (body == L"quit") return PostQuitMessage(0);
        session_.Call(L"CreateMessage", {from, kChat, L"You said: " + body, L""}).Call(L"SendMessage");
    }
    void OnError(const std::wstring& from, int code, const std::wstring& why) {
        Say(L"Error " + std::to_wstring(code) + L" from " + from + L": " + why);
        const bool refused = !loggedIn_ && code != kTimeout;
        const bool own = from == session_.Call(L"ServerAddress").Text();
        if (own && (refused || why.rfind(L"conflict", 0) == 0)) PostQuitMessage(1);
    }

    const Value session_;
    bool loggedIn_ = false;
};

Value Create(const wchar_t* name) {
    CLSID id;
    void* made = nullptr;
    Value object;
    if (SUCCEEDED(CLSIDFromProgID(name, &id)) &&
        SUCCEEDED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &made))) {
        object.variant_.vt = VT_DISPATCH;
        object.variant_.pdispVal = static_cast<IDispatch*>(made);
    }
    return object;
}

bool Connect(const Value& session, Bot& bot) {
    void* found = nullptr;
    if (FAILED(session.variant_.pdispVal->QueryInterface(IID_IConnectionPointContainer, &found)))
        return false;
    auto* container = static_cast<IConnectionPointContainer*>(found);
    IConnectionPoint* point = nullptr;
    DWORD cookie = 0;
    const bool connected = SUCCEEDED(container->FindConnectionPoint(kSessionEvents, &point)) &&
                           SUCCEEDED(point->Advise(&bot, &cookie));
    if (point) point->Release();
    container->Release();
    return connected;
}

int Run(int count, wchar_t** values) {
    const Value session = Create(L"Quorix.cSession");
    Bot bot(session);
    if (count < 5 || session.variant_.vt != VT_DISPATCH || !Connect(session, bot)) return 2;
    session.Put(L"Mode", kModern);
    session.Put(L"ServerAddress", values[1]);
    session.Put(L"Port", static_cast<short>(std::wcstol(values[2], nullptr, 10)));  // 16 bits with a sign
    session.Put(L"username", values[3]);
    session.Put(L"Password", values[4]);
    session.Put(L"Resource", L"bot");
    session.Put(L"LoginTimeout", 20);
    session.Put(L"ReconnectInterval", 5);
    if (count > 5) session.Put(L"AuthType", kPlainAuth);  // without TLS, a new password goes out in the clear
    session.Call(L"Connect", {count > 5 ? 1 : 0});
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    session.Call(L"Disconnect");
    return static_cast<int>(message.wParam);
}

}  // namespace

int wmain(int count, wchar_t** values) {
    CoInitialize(nullptr);
    const int code = Run(count, values);
    CoUninitialize();
    return code;
}
