// Values from C++ and back, by type. Nothing is converted into another kind but a number into a narrower one:
// a script language that does more does it before.
#pragma once

#include <concepts>
#include <optional>
#include <string_view>
#include <type_traits>

#include "quorix/base/Collection.h"
#include "quorix/base/Number.h"
#include "quorix/scripting/ClassTable.h"
#include "quorix/xml/XmlNode.h"

namespace quorix::scripting {

// The table of a class; see Classes.h.
template <class T>
const ClassTable& TableOf();

using Index = std::variant<std::int32_t, String>;
using Data = std::variant<String, ByteArray>;

template <class>
inline constexpr bool kIsShared = false;
template <class T>
inline constexpr bool kIsShared<std::shared_ptr<T>> = true;

template <class T>
concept TextLike = std::convertible_to<const T&, StringView>;
template <class T>
concept BytesLike = std::convertible_to<const T&, std::string_view>;
template <class T>
concept Number32 = std::is_enum_v<T> || std::same_as<T, std::int32_t>;

template <class T>
Type TypeOf() {
    if constexpr (kIsShared<T>) {
        return {Kind::Object, &TableOf<std::remove_const_t<typename T::element_type>>};
    } else if constexpr (std::is_void_v<T>) {
        return {Kind::Nothing};
    } else if constexpr (std::same_as<T, XmlNode>) {
        return {Kind::Object, &TableOf<XmlNode>};
    } else if constexpr (std::same_as<T, std::optional<String>>) {
        return {Kind::Text, nullptr, true};
    } else if constexpr (std::same_as<T, bool>) {
        return {Kind::Boolean};
    } else if constexpr (std::same_as<T, std::int16_t>) {
        return {Kind::Int16};
    } else if constexpr (Number32<T>) {
        return {Kind::Int32};
    } else if constexpr (std::same_as<T, Index>) {
        return {Kind::Index};
    } else if constexpr (std::same_as<T, Data>) {
        return {Kind::Data};
    } else if constexpr (std::same_as<T, Values>) {
        return {Kind::List};
    } else if constexpr (TextLike<T>) {
        return {Kind::Text};
    } else {
        static_assert(BytesLike<T>);
        return {Kind::Bytes};
    }
}

// What two handles on the same thing have in common.
template <class T>
const void* IdentityOf(const T& object) {
    if constexpr (requires { object.Identity(); }) {
        return object.Identity();
    } else {
        return &object;
    }
}

// A null pointer becomes a null object.
template <class T>
Value ToValue(const T& value) {
    if constexpr (kIsShared<T>) {
        using Pointed = std::remove_const_t<typename T::element_type>;
        return Object{std::const_pointer_cast<Pointed>(value), &TableOf<Pointed>(),
                      value ? IdentityOf(*value) : nullptr};
    } else if constexpr (std::same_as<T, XmlNode>) {
        // A node is the same object as long as it is the same node, not the same handle.
        if (!value) return Object{nullptr, &TableOf<XmlNode>(), nullptr};
        return Object{std::make_shared<XmlNode>(value), &TableOf<XmlNode>(), value.Raw()};
    } else if constexpr (std::same_as<T, std::optional<String>>) {
        return value ? Value(*value) : Value(Nothing{});
    } else if constexpr (std::same_as<T, Value> || std::same_as<T, Values> || std::same_as<T, bool> ||
                         std::same_as<T, std::int16_t>) {
        return value;
    } else if constexpr (Number32<T>) {
        return static_cast<std::int32_t>(value);
    } else if constexpr (TextLike<T>) {
        return String(StringView(value));
    } else {
        return ByteArray(std::string_view(value));
    }
}

// The instance of an object of that class, null for none. Error 13 for anything else.
Instance InstanceOf(const Value& value, const ClassTable& table);
std::int32_t Int32Of(const Value& value);  // error 13 for what is no number

template <class T>
const T& Exactly(const Value& value) {
    const T* found = std::get_if<T>(&value);
    if (found == nullptr) throw AutomationError(ERR_TypeMismatch);
    return *found;
}

// C++ from a value. What is missing reads as the type's empty value. Errors 13 and 6. A StringView refers to
// `value`.
template <class T>
T FromValue(const Value& value) {
    if constexpr (kIsShared<T>) {
        using Pointed = typename T::element_type;
        return std::static_pointer_cast<Pointed>(InstanceOf(value, TableOf<Pointed>()));
    } else if constexpr (std::same_as<T, XmlNode>) {
        const auto handle = FromValue<std::shared_ptr<XmlNode>>(value);
        return handle ? *handle : XmlNode();
    } else {
        if (IsMissing(value)) return T{};
        if constexpr (std::same_as<T, std::optional<String>>) {
            return std::holds_alternative<Nothing>(value) ? T() : T(Exactly<String>(value));
        } else if constexpr (std::same_as<T, std::int16_t>) {
            return ToInt16(Int32Of(value));
        } else if constexpr (Number32<T>) {
            return static_cast<T>(Int32Of(value));
        } else if constexpr (std::same_as<T, Index>) {
            if (const auto* key = std::get_if<String>(&value)) return *key;
            return Int32Of(value);
        } else if constexpr (std::same_as<T, Data>) {
            if (const auto* bytes = std::get_if<ByteArray>(&value)) return *bytes;
            return Exactly<String>(value);
        } else if constexpr (TextLike<T>) {
            return Exactly<String>(value);
        } else {
            return Exactly<T>(value);
        }
    }
}

}  // namespace quorix::scripting
