#include <ocidl.h>
#include <olectl.h>

#include <algorithm>
#include <cwchar>

#include "tests/windows/scripthost/Host.h"

namespace scripthost {
namespace {

std::wstring TextOf(VARIANT& value) {
    VARIANT text;
    VariantInit(&text);
    if (FAILED(VariantChangeType(&text, &value, VARIANT_ALPHABOOL, VT_BSTR))) return L"?";
    std::wstring out = text.bstrVal != nullptr ? text.bstrVal : L"";
    VariantClear(&text);
    return out;
}

ComPtr<IUnknown> ObjectOf(const VARIANT& value) {
    if (value.vt != VT_DISPATCH && value.vt != VT_UNKNOWN) return nullptr;
    return value.punkVal;
}

// The event interface that the object's class declares as its default source.
ComPtr<ITypeInfo> EventsOf(IUnknown& object, GUID* id) {
    ComPtr<IProvideClassInfo2> provider;
    ComPtr<ITypeInfo> coclass;
    if (FAILED(object.QueryInterface(IID_PPV_ARGS(&provider)))) return nullptr;
    if (FAILED(provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, id))) return nullptr;
    if (FAILED(provider->GetClassInfo(&coclass))) return nullptr;
    for (UINT i = 0;; ++i) {
        int flags = 0;
        HREFTYPE reference = 0;
        ComPtr<ITypeInfo> type;
        if (FAILED(coclass->GetImplTypeFlags(i, &flags))) return nullptr;
        if ((flags & IMPLTYPEFLAG_FSOURCE) == 0) continue;
        if (FAILED(coclass->GetRefTypeOfImplType(i, &reference))) return nullptr;
        return SUCCEEDED(coclass->GetRefTypeInfo(reference, &type)) ? type : nullptr;
    }
}

void PumpUntil(ULONGLONG end, const bool& quit) {
    while (!quit) {
        const ULONGLONG now = GetTickCount64();
        if (now >= end) return;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(end - now), QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
}

}  // namespace

const WScript::Named WScript::kCalls[] = {
    {L"Echo", &WScript::Echo},
    {L"CreateObject", &WScript::CreateObject},
    {L"ConnectObject", &WScript::ConnectObject},
    {L"DisconnectObject", &WScript::DisconnectObject},
    {L"Sleep", &WScript::Sleep},
    {L"Quit", &WScript::Quit},
    {L"Arguments", &WScript::Arguments},
};

HRESULT WScript::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT WScript::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    if (count != 1) return DISP_E_UNKNOWNNAME;
    const auto* found = std::find_if(std::begin(kCalls), std::end(kCalls),
                                     [&](const Named& call) { return _wcsicmp(call.name, names[0]) == 0; });
    if (found == std::end(kCalls)) return DISP_E_UNKNOWNNAME;
    ids[0] = static_cast<DISPID>(found - std::begin(kCalls)) + 1;
    return S_OK;
}

HRESULT WScript::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) {
    if (id < 1 || id > static_cast<DISPID>(std::size(kCalls))) return DISP_E_MEMBERNOTFOUND;
    std::vector<VARIANT> arguments(parameters->cArgs);
    for (UINT i = 0; i < parameters->cArgs; ++i) {
        VariantInit(&arguments[i]);
        VariantCopyInd(&arguments[i], &parameters->rgvarg[parameters->cArgs - 1 - i]);
    }
    const HRESULT outcome = (this->*kCalls[id - 1].call)(arguments, result);
    for (VARIANT& argument : arguments) VariantClear(&argument);
    return outcome;
}

HRESULT WScript::Echo(std::vector<VARIANT>& arguments, VARIANT*) {
    std::wstring line;
    for (VARIANT& argument : arguments) line += (line.empty() ? L"" : L" ") + TextOf(argument);
    Print(line + L"\n");
    return S_OK;
}

HRESULT WScript::CreateObject(std::vector<VARIANT>& arguments, VARIANT* result) {
    if (arguments.empty() || result == nullptr) return E_INVALIDARG;
    CLSID id;
    HRESULT outcome = CLSIDFromProgID(TextOf(arguments[0]).c_str(), &id);
    if (FAILED(outcome)) return outcome;
    ComPtr<IDispatch> made;
    outcome = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made));
    if (FAILED(outcome)) return outcome;
    if (arguments.size() > 1) outcome = Connect(made.Get(), TextOf(arguments[1]));
    if (FAILED(outcome)) return outcome;
    result->vt = VT_DISPATCH;
    result->pdispVal = made.Detach();
    return S_OK;
}

HRESULT WScript::ConnectObject(std::vector<VARIANT>& arguments, VARIANT*) {
    const ComPtr<IUnknown> object = arguments.empty() ? nullptr : ObjectOf(arguments[0]);
    if (object == nullptr || arguments.size() != 2) return E_INVALIDARG;
    return Connect(object.Get(), TextOf(arguments[1]));
}

HRESULT WScript::Connect(IUnknown* object, const std::wstring& prefix) {
    GUID id;
    const ComPtr<ITypeInfo> events = EventsOf(*object, &id);
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    if (events == nullptr || FAILED(object->QueryInterface(IID_PPV_ARGS(&container)))) return E_NOINTERFACE;
    HRESULT outcome = container->FindConnectionPoint(id, &point);
    if (FAILED(outcome)) return outcome;
    const ComPtr<EventSink> sink = Adopt<EventSink>(new EventSink(events, prefix, script_));
    DWORD cookie = 0;
    outcome = point->Advise(sink.Get(), &cookie);
    if (SUCCEEDED(outcome)) connections_.push_back({object, point, cookie});
    return outcome;
}

HRESULT WScript::DisconnectObject(std::vector<VARIANT>& arguments, VARIANT*) {
    const ComPtr<IUnknown> object = arguments.empty() ? nullptr : ObjectOf(arguments[0]);
    for (auto at = connections_.begin(); at != connections_.end();) {
        if (at->object != object) {
            ++at;
            continue;
        }
        at->point->Unadvise(at->cookie);
        at = connections_.erase(at);
    }
    return S_OK;
}

void WScript::DisconnectAll() {
    for (Connection& connection : connections_) connection.point->Unadvise(connection.cookie);
    connections_.clear();
    script_.Reset();
}

HRESULT WScript::Sleep(std::vector<VARIANT>& arguments, VARIANT*) {
    if (arguments.empty()) return E_INVALIDARG;
    PumpUntil(GetTickCount64() + wcstoul(TextOf(arguments[0]).c_str(), nullptr, 10), quit_);
    return S_OK;
}

HRESULT WScript::Quit(std::vector<VARIANT>& arguments, VARIANT*) {
    quit_ = true;
    if (!arguments.empty()) exitCode_ = static_cast<int>(wcstol(TextOf(arguments[0]).c_str(), nullptr, 10));
    return S_OK;
}

HRESULT WScript::Arguments(std::vector<VARIANT>& arguments, VARIANT* result) {
    const std::size_t index = arguments.empty() ? 0 : wcstoul(TextOf(arguments[0]).c_str(), nullptr, 10);
    if (index >= arguments_.size() || result == nullptr) return DISP_E_BADINDEX;
    result->vt = VT_BSTR;
    result->bstrVal = SysAllocString(arguments_[index].c_str());
    return S_OK;
}

}  // namespace scripthost
