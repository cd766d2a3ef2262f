// scripthost SCRIPT [ARGUMENT...]: runs a .vbs or .js file, and connects events as the system's own host
// does.
//
// The exit code is the script's own (WScript.Quit), 2 when an error ended it or one of its event handlers.
#include <activscp.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

#include "quorix/base/WireText.h"
#include "tests/windows/scripthost/WScript.h"

namespace scripthost {
namespace {

using quorix::automation::Adopt;

class Site : public quorix::automation::Unknown<IActiveScriptSite> {
public:
    explicit Site(ComPtr<WScript> host) : host_(std::move(host)) {}

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
        EXCEPINFO what = {};
        DWORD context = 0;
        ULONG line = 0;
        LONG column = 0;
        error->GetSourcePosition(&context, &line, &column);
        error->GetExceptionInfo(&what);
        ReportError("line " + std::to_string(line + 1), what);
        return S_OK;
    }

private:
    ComPtr<WScript> host_;
};

int Run(const std::string& path, std::vector<std::wstring> arguments) {
    std::ifstream file(path, std::ios::binary);
    const quorix::String text = quorix::TextFromUtf8(std::string((std::istreambuf_iterator<char>(file)), {}));
    CLSID language;
    ComPtr<IActiveScript> engine;
    ComPtr<IActiveScriptParse> parser;
    if (text.empty() ||
        FAILED(CLSIDFromProgID(path.ends_with(".js") ? L"JScript" : L"VBScript", &language)) ||
        FAILED(CoCreateInstance(language, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&engine))) ||
        FAILED(engine.As(&parser))) {
        printf("cannot run the script\n");
        return 2;
    }
    const ComPtr<WScript> host = Adopt(new WScript(std::move(arguments)));
    const ComPtr<Site> site = Adopt(new Site(host));
    engine->SetScriptSite(site.Get());
    parser->InitNew();
    engine->AddNamedItem(L"WScript", SCRIPTITEM_ISVISIBLE);
    ComPtr<IDispatch> script;
    engine->GetScriptDispatch(nullptr, &script);
    host->Script(std::move(script));
    engine->SetScriptState(SCRIPTSTATE_CONNECTED);
    const HRESULT outcome = parser->ParseScriptText(quorix::automation::Wide(text.c_str()), nullptr, nullptr,
                                                    nullptr, 0, 0, SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
    host->DisconnectAll();
    engine->Close();
    return HasFailed() || FAILED(outcome) ? 2 : host->ExitCode();
}

}  // namespace
}  // namespace scripthost

int main(int count, char** values) {
    if (count < 2) return 2;
    std::vector<std::wstring> arguments;
    for (int i = 2; i < count; ++i) arguments.emplace_back(values[i], values[i] + strlen(values[i]));
    CoInitialize(nullptr);
    const int code = scripthost::Run(values[1], std::move(arguments));
    CoUninitialize();
    return code;
}
