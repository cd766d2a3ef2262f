#include "quorix/automation/Variant.h"

#include <algorithm>
#include <new>

namespace quorix::automation {

BSTR MakeBstr(StringView text) {
    BSTR made = SysAllocStringLen(Wide(text.data()), static_cast<UINT>(text.size()));
    if (made == nullptr) throw std::bad_alloc();
    return made;
}

String FromBstr(BSTR text) {
    if (text == nullptr) return {};
    return {Narrow(text), SysStringLen(text)};
}

Variant Coerce(const VARIANT& value, VARTYPE type) {
    const Variant direct(value);
    Variant converted;
    const LCID english = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
    const HRESULT result =
        VariantChangeTypeEx(&converted, const_cast<Variant*>(&direct), english, VARIANT_ALPHABOOL, type);
    if (result == DISP_E_BADVARTYPE) throw BadArgument{DISP_E_TYPEMISMATCH};  // as of a null object
    if (FAILED(result)) throw BadArgument{result};
    return converted;
}

Bytes BytesOf(const VARIANT& value) {
    if (value.vt != (VT_ARRAY | VT_UI1) || SafeArrayGetDim(value.parray) != 1) {
        throw BadArgument{DISP_E_TYPEMISMATCH};
    }
    return {static_cast<const char*>(value.parray->pvData), value.parray->rgsabound[0].cElements};
}

bool IsMissing(const VARIANT& value) { return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND; }

Variant StringVariant(StringView text) {
    Variant made;
    made.bstrVal = MakeBstr(text);
    made.vt = VT_BSTR;
    return made;
}

Variant BooleanVariant(bool value) {
    Variant made;
    made.vt = VT_BOOL;
    made.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
    return made;
}

Variant Int16Variant(std::int16_t value) {
    Variant made;
    made.vt = VT_I2;
    made.iVal = value;
    return made;
}

Variant Int32Variant(std::int32_t value) {
    Variant made;
    made.vt = VT_I4;
    made.lVal = value;
    return made;
}

Variant BytesVariant(const Bytes& bytes) {
    Variant made;
    made.parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    if (made.parray == nullptr) throw std::bad_alloc();
    made.vt = VT_ARRAY | VT_UI1;
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(made.parray->pvData));
    return made;
}

Variant NullVariant() {
    Variant made;
    made.vt = VT_NULL;
    return made;
}

Variant ObjectVariant(IDispatch* adopted) {
    Variant made;
    made.vt = VT_DISPATCH;
    made.pdispVal = adopted;
    return made;
}

}  // namespace quorix::automation
