// A member that is called, as a descriptor in its type.
#pragma once

#include "python/module/Descriptions.h"
#include "python/module/Reference.h"

namespace quorix::python {

// A member, its description, and the type it is in.
struct Binding {
    const scripting::ClassTable& table;
    const scripting::Member& member;
    const MemberText& text;
    PyObject* enumeration;  // of the result, or null
};

// Throws std::logic_error where it is not described.
const Binding& Bind(const scripting::ClassTable& table, const scripting::Member& member);

// Calls the member of `self`, which must be of the member's class.
Reference CallMember(const Binding& binding, PyObject* self, scripting::Values arguments);

Reference MakeMethod(const Binding& binding);

}  // namespace quorix::python
