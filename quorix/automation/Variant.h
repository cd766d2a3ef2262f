// Values between the automation world and the library: VARIANT to C++ and back.
#pragma once

#include <oaidl.h>
#include <oleauto.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "quorix/base/String.h"

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

// A byte array of the automation world, in C++.
using Bytes = std::string;

template <class>
inline constexpr bool kIsShared = false;
template <class T>
inline constexpr bool kIsShared<std::shared_ptr<T>> = true;

// What is kept of an argument while the member runs: a view needs a string behind it.
template <class Parameter>
struct HeldAs {
    using type = std::remove_cvref_t<Parameter>;
};
template <>
struct HeldAs<StringView> {
    using type = String;
};
template <class Parameter>
using Held = typename HeldAs<Parameter>::type;

inline const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
inline const char16_t* Narrow(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

BSTR MakeBstr(StringView text);
String FromBstr(BSTR text);

// `value` converted as the automation world converts, independent of the user's locale. Throws BadArgument.
Variant Coerce(const VARIANT& value, VARTYPE type);

// The bytes of a byte array. Throws BadArgument for anything else.
Bytes BytesOf(const VARIANT& value);

// True for what stands for an argument that was left out.
bool IsMissing(const VARIANT& value);

// Objects, in Object.cpp: a C++ object as its one wrapper, and what a wrapper wraps. Of handles, many of
// which may stand for one thing, `identity` is the thing.
class ClassTable;
template <class T>
const ClassTable& TableOf();
IDispatch* Wrap(std::shared_ptr<void> instance, const ClassTable& table);
IDispatch* Wrap(std::shared_ptr<void> handle, const ClassTable& table, const void* identity);
std::shared_ptr<void> Unwrap(const VARIANT& value, const ClassTable& table);

// Types of a room of its own: From and To, as the functions below.
template <class T>
struct Custom;

// C++ from VARIANT. What is missing reads as the type's empty value. Throws BadArgument.
template <class T>
T FromVariant(const VARIANT& value) {
    if constexpr (kIsShared<T>) {
        using Pointed = typename T::element_type;
        if (IsMissing(value)) return nullptr;
        return std::static_pointer_cast<Pointed>(Unwrap(value, TableOf<Pointed>()));
    } else if constexpr (std::same_as<T, Variant>) {
        return Variant(value);
    } else {
        if (IsMissing(value)) return T{};
        if constexpr (std::same_as<T, String>) {
            return FromBstr(Coerce(value, VT_BSTR).bstrVal);
        } else if constexpr (std::same_as<T, bool>) {
            return Coerce(value, VT_BOOL).boolVal != VARIANT_FALSE;
        } else if constexpr (std::same_as<T, std::int16_t>) {
            return Coerce(value, VT_I2).iVal;
        } else if constexpr (std::is_enum_v<T> || std::same_as<T, std::int32_t>) {
            return static_cast<T>(Coerce(value, VT_I4).lVal);
        } else if constexpr (std::same_as<T, Bytes>) {
            return BytesOf(value);
        } else {
            return Custom<T>::From(value);
        }
    }
}

Variant StringVariant(StringView text);
Variant BooleanVariant(bool value);
Variant Int16Variant(std::int16_t value);
Variant Int32Variant(std::int32_t value);
Variant BytesVariant(const Bytes& bytes);
Variant ObjectVariant(IDispatch* adopted);  // takes over the reference
Variant NullVariant();

// VARIANT from C++.
template <class T>
Variant ToVariant(const T& value) {
    if constexpr (kIsShared<T>) {
        using Pointed = std::remove_const_t<typename T::element_type>;
        return ObjectVariant(value ? Wrap(value, TableOf<Pointed>()) : nullptr);
    } else if constexpr (std::convertible_to<const T&, StringView>) {
        return StringVariant(value);
    } else if constexpr (std::same_as<T, bool>) {
        return BooleanVariant(value);
    } else if constexpr (std::same_as<T, std::int16_t>) {
        return Int16Variant(value);
    } else if constexpr (std::is_enum_v<T> || std::same_as<T, std::int32_t>) {
        return Int32Variant(static_cast<std::int32_t>(value));
    } else if constexpr (std::same_as<T, Bytes>) {
        return BytesVariant(value);
    } else {
        return Custom<T>::To(value);
    }
}

}  // namespace quorix::automation
