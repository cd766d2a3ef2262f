#include <cwchar>

#include "tests/windows/scripthost/Host.h"

namespace scripthost {
namespace {

std::map<DISPID, std::wstring> NamesOf(ITypeInfo& events, const std::wstring& prefix) {
    std::map<DISPID, std::wstring> names;
    TYPEATTR* type = nullptr;
    if (FAILED(events.GetTypeAttr(&type))) return names;
    for (UINT i = 0; i < type->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        BSTR name = nullptr;
        if (FAILED(events.GetFuncDesc(i, &function))) continue;
        if (SUCCEEDED(events.GetDocumentation(function->memid, &name, nullptr, nullptr, nullptr))) {
            names[function->memid] = prefix + name;
            SysFreeString(name);
        }
        events.ReleaseFuncDesc(function);
    }
    events.ReleaseTypeAttr(type);
    return names;
}

// Nobody else tells of an error in a handler: whoever raised the event goes on.
void ReportFailure(const std::wstring& handler, const EXCEPINFO& what) {
    wchar_t code[16];
    swprintf(code, 16, L"%08lX", static_cast<unsigned long>(what.scode));
    Print(L"script error in " + handler + L": " + code + L" " +
          (what.bstrDescription != nullptr ? what.bstrDescription : L"") + L"\n");
    HandlerFailed() = true;
}

}  // namespace

bool& HandlerFailed() {
    static bool failed = false;
    return failed;
}

EventSink::EventSink(ComPtr<ITypeInfo> events, std::wstring prefix, ComPtr<IDispatch> script)
    : names_(NamesOf(*events.Get(), prefix)), script_(std::move(script)) {}

HRESULT EventSink::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT EventSink::Invoke(DISPID id, REFIID, LCID locale, WORD, DISPPARAMS* parameters, VARIANT* result,
                          EXCEPINFO* exception, UINT* badArgument) {
    const auto named = names_.find(id);
    if (named == names_.end()) return DISP_E_MEMBERNOTFOUND;
    LPOLESTR name = named->second.data();
    DISPID function = DISPID_UNKNOWN;
    if (FAILED(script_->GetIDsOfNames(IID_NULL, &name, 1, locale, &function))) return S_OK;  // not handled
    EXCEPINFO own = {};
    const HRESULT outcome = script_->Invoke(function, IID_NULL, locale, DISPATCH_METHOD, parameters, result,
                                            exception != nullptr ? exception : &own, badArgument);
    if (FAILED(outcome)) ReportFailure(named->second, own);
    return outcome;
}

}  // namespace scripthost
