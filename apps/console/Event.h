// What the console tells: each kind of event once, with the words for people and the fields for programs.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "quorix/base/String.h"

namespace quorix::console {

// One named value of an event. Text is UTF-8, as it came: whoever shows it cleans it. Those whose name begins
// with
// "_" are words for people, made of others.
struct Field {
    Field(const char* fieldName, StringView text);
    Field(const char* fieldName, std::string text) : name(fieldName), value(std::move(text)) {}
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) Field(const char* fieldName, Number number)
        : name(fieldName), value(static_cast<std::int64_t>(number)) {}
    template <std::same_as<bool> Flag>  // a template, since a pointer would be taken for a flag
    Field(const char* fieldName, Flag flag) : name(fieldName), value(flag) {}

    const char* name;
    std::variant<std::string, std::int64_t, bool> value;
};
using Fields = std::vector<Field>;

// data: what somebody wants to know; standard output. list: the same, and no moment belongs to it. echo: what
// the user did, shown on a terminal or as JSON only. notice, error: about the program itself; standard error
// unless on a terminal or as JSON.
enum class EventKind { data, list, echo, notice, error };

struct EventForm {
    std::string_view name;
    EventKind kind;
    std::string_view pattern;  // {field} stands for a field's value
    std::string_view help;
};

std::span<const EventForm> EventForms();

// std::logic_error when there is no such event.
const EventForm& FormOf(std::string_view name);

}  // namespace quorix::console
