#include "tests/windows/support/Late.h"

#include <algorithm>
#include <stdexcept>

#include "quorix/base/WireText.h"

namespace windowstest {

using namespace quorix::automation;

namespace {

void Require(const Answer& answer, const wchar_t* name) {
    if (SUCCEEDED(answer.code)) return;
    char code[32];
    snprintf(code, sizeof code, ": %08lX %08lX ", static_cast<unsigned long>(answer.code),
             static_cast<unsigned long>(answer.error));
    throw std::runtime_error(Utf8(name) + code + Utf8(answer.text.c_str()));
}

}  // namespace

std::string Utf8(const wchar_t* text) { return quorix::Utf8FromText(Narrow(text)); }
std::wstring WideOf(const VARIANT& value) {
    const Variant text = Coerce(value, VT_BSTR);
    return {text.bstrVal, SysStringLen(text.bstrVal)};
}

Variant Of(const wchar_t* text) { return StringVariant(Narrow(text)); }
Variant Of(int number) { return Int32Variant(number); }
Variant Of(bool flag) { return BooleanVariant(flag); }
Variant Of(IDispatch* object) {
    object->AddRef();
    return ObjectVariant(object);
}
Variant Nothing() { return ObjectVariant(nullptr); }
Variant LeftOut() {
    Variant made;
    made.vt = VT_ERROR;
    made.scode = DISP_E_PARAMNOTFOUND;
    return made;
}

std::string Words(const VARIANT& value) {
    const Variant direct(value);
    if (direct.vt == VT_EMPTY) return "Empty";
    if (direct.vt == VT_NULL) return "Null";
    if (direct.vt == VT_DISPATCH || direct.vt == VT_UNKNOWN) return direct.punkVal ? "Object" : "Nothing";
    if (direct.vt == (VT_ARRAY | VT_UI1)) return BytesOf(direct);
    return Utf8(WideOf(direct).c_str());
}

Late::Late(const VARIANT& object) {
    if (object.vt == VT_DISPATCH) object_ = object.pdispVal;
}

Late Late::Create(const std::wstring& programId) {
    CLSID id;
    ComPtr<IDispatch> made;
    if (FAILED(CLSIDFromProgID(programId.c_str(), &id)) ||
        FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&made)))) {
        throw std::runtime_error("cannot create " + Utf8(programId.c_str()));
    }
    return Late(made);
}

DISPID Late::Id(const wchar_t* name) const {
    LPOLESTR asked = const_cast<wchar_t*>(name);
    DISPID id = DISPID_UNKNOWN;
    object_->GetIDsOfNames(IID_NULL, &asked, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

Answer Late::Try(WORD kinds, const wchar_t* name, std::vector<Variant> arguments) const {
    return TryId(kinds, Id(name), std::move(arguments));
}

Answer Late::TryId(WORD kinds, DISPID id, std::vector<Variant> arguments) const {
    std::reverse(arguments.begin(), arguments.end());
    std::vector<VARIANT> raw(arguments.begin(), arguments.end());
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = (kinds & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS parameters = {raw.data(), isPut ? &put : nullptr, static_cast<UINT>(raw.size()),
                             isPut ? 1U : 0U};
    Answer answer;
    EXCEPINFO exception = {};
    answer.code = object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kinds, &parameters, &answer.value,
                                  &exception, &answer.badArgument);
    if (answer.code == DISP_E_EXCEPTION) {
        answer.error = exception.scode;
        answer.text = exception.bstrDescription != nullptr ? exception.bstrDescription : L"";
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
    }
    return answer;
}

Variant Late::Get(const wchar_t* name, std::vector<Variant> arguments) const {
    Answer answer = Try(DISPATCH_PROPERTYGET | DISPATCH_METHOD, name, std::move(arguments));
    Require(answer, name);
    return std::move(answer.value);
}

Late Late::Object(const wchar_t* name, std::vector<Variant> arguments) const {
    return Late(Get(name, std::move(arguments)));
}

std::string Late::Text(const wchar_t* name, std::vector<Variant> arguments) const {
    return Words(Get(name, std::move(arguments)));
}

void Late::Put(const wchar_t* name, Variant value) const {
    Require(Try(DISPATCH_PROPERTYPUT, name, {std::move(value)}), name);
}

void Late::Do(const wchar_t* name, std::vector<Variant> arguments) const {
    Require(Try(DISPATCH_METHOD, name, std::move(arguments)), name);
}

unsigned long Late::References() const {
    object_->AddRef();
    return object_->Release();
}

}  // namespace windowstest
