// What the tables do not know of themselves: help texts, the names of parameters, and enumerations. Made from
// the interface description that numbers the members for Windows.
#pragma once

#include <string>
#include <vector>

#include "quorix/scripting/ClassTable.h"

namespace quorix::python {

struct Enumeration {
    struct Named {
        const char* name;
        int value;
    };
    const char* name;
    const char* help;
    std::vector<Named> values;
};

struct ClassText {
    const char* name;
    const char* help;
};

struct MemberText {
    struct Parameter {
        const char* name;
        const char* enumeration;  // "" for none
    };
    const char* owner;  // a class, or for its events that and "Events"
    const char* name;
    scripting::MemberKind kind;
    const char* help;
    std::vector<Parameter> parameters;
    const char* enumeration;  // of the result
};

// These three are made by describe.py.
const std::vector<Enumeration>& Enumerations();
const std::vector<ClassText>& ClassTexts();
const std::vector<MemberText>& MemberTexts();

const char* HelpOf(const scripting::ClassTable& table);
// They throw std::logic_error where the description has no such member, or another number of parameters.
const MemberText& TextOf(const scripting::ClassTable& table, const scripting::Member& member);
const MemberText& TextOf(const scripting::ClassTable& table, const scripting::Event& event);

}  // namespace quorix::python
