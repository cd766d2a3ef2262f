// scripthost SCRIPT [ARGUMENT...]: runs a .vbs or .js file.
//
// The exit code is the script's own (WScript.Quit), 2 when an error ended it or one of its event handlers.
#include <cstdio>
#include <fstream>
#include <iterator>

#include "tests/windows/scripthost/Host.h"

std::atomic<long>& quorix::automation::LoadCount() {
    static std::atomic<long> count{0};
    return count;
}

namespace scripthost {

void Print(const std::wstring& text) {
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr)));
    fwrite(bytes.data(), 1, bytes.size(), stdout);
    fflush(stdout);
}

namespace {

class Site : public Unknown<IActiveScriptSite> {
public:
    explicit Site(ComPtr<WScript> host) : host_(std::move(host)) {}
    bool Failed() const { return failed_; }

    STDMETHODIMP GetLCID(LCID*) override { return E_NOTIMPL; }
    STDMETHODIMP GetItemInfo(LPCOLESTR, DWORD wanted, IUnknown** item, ITypeInfo** type) override {
        if ((wanted & SCRIPTINFO_ITYPEINFO) != 0) *type = nullptr;
        if ((wanted & SCRIPTINFO_IUNKNOWN) != 0) host_.CopyTo(reinterpret_cast<IDispatch**>(item));
        return S_OK;
    }
    STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
    STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
    STDMETHODIMP OnEnterScript() override { return S_OK; }
    STDMETHODIMP OnLeaveScript() override { return S_OK; }

    STDMETHODIMP OnScriptError(IActiveScriptError* error) override {
        if (host_->HasQuit()) return S_OK;
        failed_ = true;
        EXCEPINFO what = {};
        DWORD context = 0;
        ULONG line = 0;
        LONG column = 0;
        error->GetSourcePosition(&context, &line, &column);
        error->GetExceptionInfo(&what);
        wchar_t code[16];
        swprintf(code, 16, L"%08lX", static_cast<unsigned long>(what.scode));
        Print(L"script error in line " + std::to_wstring(line + 1) + L": " + code + L" " +
              (what.bstrDescription != nullptr ? what.bstrDescription : L"") + L"\n");
        return S_OK;
    }

private:
    ComPtr<WScript> host_;
    bool failed_ = false;
};

std::wstring ReadFile(const wchar_t* path) {
    std::ifstream file(std::string(path, path + wcslen(path)), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::wstring text(bytes.size(), L'\0');
    text.resize(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), static_cast<int>(bytes.size()),
                                                     text.data(), static_cast<int>(text.size()))));
    return text;
}

bool Ends(const std::wstring& text, const std::wstring& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

int Run(const wchar_t* path, std::vector<std::wstring> arguments) {
    const std::wstring text = ReadFile(path);
    CLSID language;
    ComPtr<IActiveScript> engine;
    ComPtr<IActiveScriptParse> parser;
    if (text.empty() || FAILED(CLSIDFromProgID(Ends(path, L".js") ? L"JScript" : L"VBScript", &language)) ||
        FAILED(CoCreateInstance(language, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&engine))) ||
        FAILED(engine.As(&parser))) {
        Print(L"cannot run the script\n");
        return 2;
    }
    const ComPtr<WScript> host = Adopt<WScript>(new WScript(std::move(arguments)));
    const ComPtr<Site> site = Adopt<Site>(new Site(host));
    engine->SetScriptSite(site.Get());
    parser->InitNew();
    engine->AddNamedItem(L"WScript", SCRIPTITEM_ISVISIBLE);
    ComPtr<IDispatch> script;
    engine->GetScriptDispatch(nullptr, &script);
    host->Script(script);
    engine->SetScriptState(SCRIPTSTATE_CONNECTED);
    const HRESULT outcome = parser->ParseScriptText(text.c_str(), nullptr, nullptr, nullptr, 0, 0,
                                                    SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
    host->DisconnectAll();
    script.Reset();
    engine->Close();
    if (site->Failed() || HandlerFailed() || (FAILED(outcome) && !host->HasQuit())) return 2;
    return host->ExitCode();
}

}  // namespace
}  // namespace scripthost

int wmain(int count, wchar_t** values) {
    if (count < 2) return 2;
    CoInitialize(nullptr);
    const int code = scripthost::Run(values[1], std::vector<std::wstring>(values + 2, values + count));
    CoUninitialize();
    return code;
}
