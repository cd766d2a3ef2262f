// What a script of the host sees as WScript.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/windows/support/Sink.h"

namespace scripthost {

using windowstest::ComPtr;
using windowstest::Late;
using windowstest::Variant;

// Prints an error of the script, and remembers that there was one.
void ReportError(const std::string& where, const EXCEPINFO& what);
bool HasFailed();

// Echo, CreateObject and ConnectObject with the prefix of the event handlers, Sleep, Quit, and Arguments by
// number.
class WScript : public windowstest::Called {
public:
    explicit WScript(std::vector<std::wstring> arguments);

    void Script(ComPtr<IDispatch> script) { script_ = std::move(script); }
    int ExitCode() const { return exitCode_; }
    void DisconnectAll();

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) override;

private:
    using Arguments = std::vector<Variant>;

    void Connect(const Late& object, const std::wstring& prefix);

    std::vector<std::pair<std::wstring, std::function<Variant(const Arguments&)>>> calls_;
    std::vector<std::unique_ptr<windowstest::Connection>> connections_;
    ComPtr<IDispatch> script_;
    int exitCode_ = 0;
};

}  // namespace scripthost
