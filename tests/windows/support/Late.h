// Calls to automation objects as a late-bound client makes them: by name, with VARIANTs.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "quorix/automation/TypeLibrary.h"
#include "quorix/automation/Unknown.h"
#include "tests/windows/support/Pump.h"

namespace windowstest {

using quorix::automation::ComPtr;
using quorix::automation::Variant;

Variant Of(const wchar_t* text);
Variant Of(int number);
Variant Of(bool flag);
Variant Of(IDispatch* object);
Variant Nothing();  // a null object
Variant LeftOut();  // an optional argument that is not given

// What a call did.
struct Answer {
    HRESULT code = E_UNEXPECTED;
    Variant value;
    HRESULT error = S_OK;  // of the exception, when the code is DISP_E_EXCEPTION
    std::wstring text;
    unsigned badArgument = ~0U;
};

std::string Utf8(const wchar_t* text);
std::wstring WideOf(const VARIANT& value);  // as a text

// The value in words, for comparing: texts as they are, numbers in decimal, "True", "Nothing", "Object".
std::string Words(const VARIANT& value);

class Late {
public:
    Late() = default;
    explicit Late(ComPtr<IDispatch> object) : object_(std::move(object)) {}
    explicit Late(const VARIANT& object);

    // A new object; a test that cannot make one fails by exception.
    static Late Create(const std::wstring& programId);

    // `kinds` is a sum of DISPATCH_ values.
    Answer Try(WORD kinds, const wchar_t* name, std::vector<Variant> arguments = {}) const;
    Answer TryId(WORD kinds, DISPID id, std::vector<Variant> arguments = {}) const;
    DISPID Id(const wchar_t* name) const;

    // These throw when the call fails.
    Variant Get(const wchar_t* name, std::vector<Variant> arguments = {}) const;
    Late Object(const wchar_t* name, std::vector<Variant> arguments = {}) const;
    std::string Text(const wchar_t* name, std::vector<Variant> arguments = {}) const;
    void Put(const wchar_t* name, Variant value) const;
    void Do(const wchar_t* name, std::vector<Variant> arguments = {}) const;

    IDispatch* operator->() const { return object_.Get(); }
    IDispatch* Raw() const { return object_.Get(); }
    explicit operator bool() const { return object_ != nullptr; }
    void Release() { object_.Reset(); }

    // How many references there are now.
    unsigned long References() const;

private:
    ComPtr<IDispatch> object_;
};

}  // namespace windowstest
