#include "tests/windows/scripthost/WScript.h"

#include <cstdio>
#include <stdexcept>

#include "tests/windows/support/Functions.h"

namespace scripthost {

using namespace windowstest;
using quorix::automation::Adopt;

namespace {

bool failed = false;

// What WScript.Arguments is without a number behind it: an object with a Count.
class Counted : public Called {
public:
    explicit Counted(std::size_t count) : count_(count) {}

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        ids[0] = 1;
        return std::wstring(L"Count") == names[0] ? S_OK : DISP_E_UNKNOWNNAME;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
        if (result != nullptr) Of(static_cast<int>(count_)).MoveTo(result);
        return S_OK;
    }

private:
    std::size_t count_;
};

int Number(const Variant& value) { return quorix::automation::Coerce(value, VT_I4).lVal; }

}  // namespace

bool HasFailed() { return failed; }

void ReportError(const std::string& where, const EXCEPINFO& what) {
    failed = true;
    printf("script error in %s: %08lX %s\n", where.c_str(), static_cast<unsigned long>(what.scode),
           what.bstrDescription != nullptr ? Utf8(what.bstrDescription).c_str() : "");
    fflush(stdout);
}

WScript::WScript(std::vector<std::wstring> given)
    : calls_{
          {L"Echo",
           [](const Arguments& words) {
               for (const Variant& word : words) printf("%s ", Words(word).c_str());
               printf("\n");
               return Variant();
           }},
          {L"CreateObject",
           [this](const Arguments& arguments) {
               const Late made = Late::Create(WideOf(arguments.at(0)));
               if (arguments.size() > 1) Connect(made, WideOf(arguments[1]));
               return Of(made.Raw());
           }},
          {L"ConnectObject",
           [this](const Arguments& arguments) {
               Connect(Late(arguments.at(0)), WideOf(arguments.at(1)));
               return Variant();
           }},
          {L"Sleep",
           [](const Arguments& arguments) {
               PumpFor(static_cast<ULONGLONG>(Number(arguments.at(0))));
               return Variant();
           }},
          {L"Quit",
           [this](const Arguments& arguments) {
               exitCode_ = Number(arguments.at(0));
               return Variant();
           }},
          {L"Arguments",
           [given](const Arguments& arguments) {
               if (arguments.empty()) return Of(Adopt(new Counted(given.size())).Get());
               return Of(given.at(static_cast<std::size_t>(Number(arguments.at(0)))).c_str());
           }},
      } {}

void WScript::Connect(const Late& object, const std::wstring& prefix) {
    auto connection = std::make_unique<Connection>(object);
    const ComPtr<ITypeInfo> events = DefaultEventsInfoOf(object);
    ForEachFunction(*events.Get(), [&](const FUNCDESC& event) {
        const std::string name = NameOf(*events.Get(), event.memid);
        const std::wstring handler = prefix + std::wstring(name.begin(), name.end());
        (*connection)->at[event.memid] = [this, handler](DISPPARAMS& parameters) {
            const DISPID function = Late(script_).Id(handler.c_str());
            if (function == DISPID_UNKNOWN) return S_OK;  // not handled
            EXCEPINFO error = {};
            const HRESULT outcome = script_->Invoke(function, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                                    &parameters, nullptr, &error, nullptr);
            if (FAILED(outcome)) ReportError(Utf8(handler.c_str()), error);
            return outcome;
        };
    });
    connections_.push_back(std::move(connection));
}

void WScript::DisconnectAll() {
    connections_.clear();
    script_.Reset();
}

HRESULT WScript::GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) {
    for (std::size_t i = 0; i < calls_.size(); ++i) {
        if (calls_[i].first != names[0]) continue;
        ids[0] = static_cast<DISPID>(i) + 1;
        return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
}

HRESULT WScript::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) {
    try {
        Arguments arguments;
        for (UINT i = parameters->cArgs; i-- > 0;) arguments.emplace_back(parameters->rgvarg[i]);
        Variant made = calls_.at(static_cast<std::size_t>(id) - 1).second(arguments);
        if (result != nullptr) made.MoveTo(result);
        return S_OK;
    } catch (const std::exception& error) {
        printf("%s\n", error.what());
        return E_INVALIDARG;
    } catch (const quorix::automation::BadArgument& bad) {
        return bad.code;
    }
}

}  // namespace scripthost
