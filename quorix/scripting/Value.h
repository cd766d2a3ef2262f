// What travels between a script and the library: a small closed set of values, the same for every script
// language.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "quorix/base/AutomationError.h"
#include "quorix/base/String.h"

namespace quorix::scripting {

class ClassTable;

// A C++ object, whatever its class.
using Instance = std::shared_ptr<void>;

// An object with its class. Two values with the same identity and class stand for the same thing, though
// their instances may be two handles on it. No instance: a null object.
struct Object {
    Instance instance;
    const ClassTable* table = nullptr;
    const void* identity = nullptr;

    bool operator==(const Object& other) const { return identity == other.identity && table == other.table; }
};

// Means that there is nothing where something could be: an attribute that is absent, no object.
struct Nothing {
    bool operator==(const Nothing&) const = default;
};

// An argument that was left out; the result of a member that has none.
using Missing = std::monostate;

using ByteArray = std::string;

struct Value;
using Values = std::vector<Value>;

struct Value
    : std::variant<Missing, Nothing, bool, std::int16_t, std::int32_t, String, ByteArray, Object, Values> {
    using variant::variant;
};

inline bool IsMissing(const Value& value) { return std::holds_alternative<Missing>(value); }

// What a parameter takes, and what a result is.
enum class Kind {
    Nothing,  // a result only: there is none
    Boolean,
    Int16,
    Int32,
    Text,
    Bytes,
    Object,  // of one class, or a null object
    Index,   // a parameter only: text is a key, a number a position
    Data,    // a parameter only: text or bytes
    List,    // a result only: the elements of a collection
};

struct Type {
    Kind kind = Kind::Nothing;
    const ClassTable& (*table)() = nullptr;  // the class of an object
    bool isOptional = false;                 // Nothing is as good as a text
};

// An argument that cannot be taken. Numbers: 6 out of range, 13 wrong type or class, 449 a required argument
// left out, 450 too many arguments.
class ArgumentError : public AutomationError {
public:
    ArgumentError(std::int32_t number, std::size_t position);

    std::size_t Position() const { return position_; }  // counted from 0

private:
    std::size_t position_;
};

}  // namespace quorix::scripting
