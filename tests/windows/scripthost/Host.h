// A small host for the two script languages of the system, which connects events as the system's own host
// does.
#pragma once

#include <activscp.h>
#include <oaidl.h>

#include <map>
#include <string>
#include <vector>

#include "quorix/automation/ComPtr.h"
#include "quorix/automation/Unknown.h"

namespace scripthost {

using quorix::automation::Adopt;
using quorix::automation::ComPtr;
using quorix::automation::Unknown;

void Print(const std::wstring& text);

// Set once an event handler of the script has failed.
bool& HandlerFailed();

// Passes the events of one object to the script's functions named prefix and event.
class EventSink : public Unknown<IDispatch> {
public:
    EventSink(ComPtr<ITypeInfo> events, std::wstring prefix, ComPtr<IDispatch> script);

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID locale, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* exception, UINT* badArgument) override;

private:
    std::map<DISPID, std::wstring> names_;
    ComPtr<IDispatch> script_;
};

// The script's WScript: Echo, CreateObject, ConnectObject, DisconnectObject, Sleep, Quit, Arguments.
class WScript : public Unknown<IDispatch> {
public:
    explicit WScript(std::vector<std::wstring> arguments) : arguments_(std::move(arguments)) {}

    void Script(ComPtr<IDispatch> script) { script_ = std::move(script); }
    bool HasQuit() const { return quit_; }
    int ExitCode() const { return exitCode_; }
    void DisconnectAll();

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) override;

private:
    struct Connection {
        ComPtr<IUnknown> object;
        ComPtr<IConnectionPoint> point;
        DWORD cookie;
    };
    using Call = HRESULT (WScript::*)(std::vector<VARIANT>& arguments, VARIANT* result);
    struct Named {
        const wchar_t* name;
        Call call;
    };
    static const Named kCalls[];

    HRESULT Echo(std::vector<VARIANT>& arguments, VARIANT* result);
    HRESULT CreateObject(std::vector<VARIANT>& arguments, VARIANT* result);
    HRESULT ConnectObject(std::vector<VARIANT>& arguments, VARIANT* result);
    HRESULT DisconnectObject(std::vector<VARIANT>& arguments, VARIANT* result);
    HRESULT Sleep(std::vector<VARIANT>& arguments, VARIANT* result);
    HRESULT Quit(std::vector<VARIANT>& arguments, VARIANT* result);
    HRESULT Arguments(std::vector<VARIANT>& arguments, VARIANT* result);

    HRESULT Connect(IUnknown* object, const std::wstring& prefix);

    std::vector<std::wstring> arguments_;
    std::vector<Connection> connections_;
    ComPtr<IDispatch> script_;
    bool quit_ = false;
    int exitCode_ = 0;
};

}  // namespace scripthost
