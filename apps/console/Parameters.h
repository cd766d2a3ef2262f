// What may stand behind the name of a command. A usage line such as "JID [TEXT]" says it all: its words are
// the kinds of parameters in this table, in brackets when they may be missing.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "quorix/base/String.h"

namespace quorix::console {

using Words = std::vector<String>;

struct ParameterKind {
    std::string_view name;
    bool takesRest;  // of the line, blanks included
    bool (*accepts)(StringView value);
    std::string_view help;
};

std::span<const ParameterKind> ParameterKinds();

struct Parameter {
    const ParameterKind* kind;
    bool optional;
};

std::vector<Parameter> ParametersOf(std::string_view usage);

// The values of `line`, one for each parameter, "" for one that is missing.
struct ParsedLine {
    Words values;
    std::string complaint;  // "" when the line is right
    bool onlyPasswordMissing = false;
};
ParsedLine ParseLine(std::string_view usage, StringView line);

// "NAME=VALUE; NAME=VALUE": names and values without the blanks around them.
using Values = std::vector<std::pair<String, String>>;
Values ParseValues(StringView text);

// The parts of `text` between separators, without the blanks around them; empty parts are left out.
Words Parts(StringView text, char16_t separator);

bool IsJid(StringView text);

}  // namespace quorix::console
