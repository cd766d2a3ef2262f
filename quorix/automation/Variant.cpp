#include "quorix/automation/Variant.h"

#include <algorithm>
#include <new>

#include "quorix/automation/Enumerator.h"
#include "quorix/base/WireText.h"

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

std::wstring WideName(const char* name) { return Wide(TextFromUtf8(name).c_str()); }

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

scripting::ByteArray BytesOf(const VARIANT& value) {
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

Variant BytesVariant(const scripting::ByteArray& bytes) {
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

Variant EnumeratorVariant(const std::vector<Variant>& values) {
    Variant made;
    made.punkVal = new Enumerator<IEnumVARIANT, VARIANT>(std::vector<VARIANT>(values.begin(), values.end()));
    made.vt = VT_UNKNOWN;
    return made;
}

namespace {

std::int32_t LongOf(const VARIANT& value) { return Coerce(value, VT_I4).lVal; }
String TextOf(const VARIANT& value) { return FromBstr(Coerce(value, VT_BSTR).bstrVal); }

// As they read, whatever stands between.
bool IsText(const VARIANT& value) { return Variant(value).vt == VT_BSTR; }
bool IsByteArray(const VARIANT& value) { return Variant(value).vt == (VT_ARRAY | VT_UI1); }

// One for each kind of value.
struct MakeVariant {
    Variant operator()(scripting::Missing) const { return {}; }
    Variant operator()(scripting::Nothing) const { return NullVariant(); }
    Variant operator()(bool value) const { return BooleanVariant(value); }
    Variant operator()(std::int16_t value) const { return Int16Variant(value); }
    Variant operator()(std::int32_t value) const { return Int32Variant(value); }
    Variant operator()(const String& text) const { return StringVariant(text); }
    Variant operator()(const scripting::ByteArray& bytes) const { return BytesVariant(bytes); }
    Variant operator()(const scripting::Object& object) const {
        return ObjectVariant(object.instance ? Wrap(object) : nullptr);
    }
    Variant operator()(const scripting::Values& elements) const {
        std::vector<Variant> made;
        for (const scripting::Value& element : elements) made.push_back(VariantOf(element));
        return EnumeratorVariant(made);
    }
};

}  // namespace

scripting::Value ValueOf(const VARIANT& value, const scripting::Type& type) {
    using scripting::Kind;
    if (IsMissing(value)) return {};
    switch (type.kind) {
        case Kind::Boolean: return Coerce(value, VT_BOOL).boolVal != VARIANT_FALSE;
        case Kind::Int16: return Coerce(value, VT_I2).iVal;
        case Kind::Int32: return LongOf(value);
        case Kind::Text: return TextOf(value);
        case Kind::Bytes: return BytesOf(value);
        case Kind::Object: return Unwrap(value, type.table());
        case Kind::Index:
            if (IsText(value)) return TextOf(value);
            return LongOf(value);
        case Kind::Data:
            if (IsByteArray(value)) return BytesOf(Variant(value));
            return TextOf(value);
        default: throw BadArgument{DISP_E_TYPEMISMATCH};
    }
}

Variant VariantOf(const scripting::Value& value) { return std::visit(MakeVariant(), value); }

}  // namespace quorix::automation
