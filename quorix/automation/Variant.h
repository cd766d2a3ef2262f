// Values between the automation world and the tables: VARIANT to Value and back.
#pragma once

#include <oaidl.h>
#include <oleauto.h>

#include <utility>
#include <vector>

#include "quorix/scripting/Conversion.h"

// The system's macro would rename a member of cMessage.
#undef SendMessage

namespace quorix::automation {

// An argument that cannot be taken: what IDispatch answers, and which argument (counted from 0).
struct BadArgument {
    HRESULT code;
    unsigned position = 0;
};

// A VARIANT that clears itself.
class Variant : public VARIANT {
public:
    Variant() { VariantInit(this); }
    ~Variant() { VariantClear(this); }
    Variant(Variant&& other) noexcept : VARIANT(other) { VariantInit(&other); }
    Variant& operator=(Variant&& other) noexcept {
        VariantClear(this);
        static_cast<VARIANT&>(*this) = other;
        VariantInit(&other);
        return *this;
    }

    // Copies follow references; BadArgument when there is not enough memory.
    explicit Variant(const VARIANT& other) {
        VariantInit(this);
        const HRESULT result = VariantCopyInd(this, const_cast<VARIANT*>(&other));
        if (FAILED(result)) throw BadArgument{result};
    }
    Variant(const Variant& other) : Variant(static_cast<const VARIANT&>(other)) {}
    Variant& operator=(const Variant& other) { return *this = Variant(other); }

    void MoveTo(VARIANT* target) {
        *target = *this;
        VariantInit(this);
    }
};

inline const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
std::wstring WideName(const char* name);
inline const char16_t* Narrow(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

BSTR MakeBstr(StringView text);
String FromBstr(BSTR text);

// `value` converted as the automation world converts, independent of the user's locale. Throws BadArgument.
Variant Coerce(const VARIANT& value, VARTYPE type);

// The bytes of a byte array. Throws BadArgument for anything else.
scripting::ByteArray BytesOf(const VARIANT& value);

// True for what stands for an argument that was left out.
bool IsMissing(const VARIANT& value);

// Objects, in Object.cpp: an object as its one wrapper, and what a wrapper wraps.
IDispatch* Wrap(scripting::Object object);
scripting::Object Unwrap(const VARIANT& value, const scripting::ClassTable& table);

// What a parameter of that type takes from `value`. Throws BadArgument.
scripting::Value ValueOf(const VARIANT& value, const scripting::Type& type);
Variant VariantOf(const scripting::Value& value);

Variant StringVariant(StringView text);
Variant BooleanVariant(bool value);
Variant Int16Variant(std::int16_t value);
Variant Int32Variant(std::int32_t value);
Variant BytesVariant(const scripting::ByteArray& bytes);
Variant ObjectVariant(IDispatch* adopted);  // takes over the reference
Variant NullVariant();
// A new enumerator over `values`, which are copied.
Variant EnumeratorVariant(const std::vector<Variant>& values);

// VARIANT from C++.
template <class T>
Variant ToVariant(const T& value) {
    return VariantOf(scripting::ToValue(value));
}

}  // namespace quorix::automation
