// The enumerations as Python's own, and where values of them come from.
#pragma once

#include <vector>

#include "python/module/Reference.h"
#include "quorix/scripting/ClassTable.h"

namespace quorix::python {

// Makes an IntEnum of each, and puts them and their members into `module`.
void MakeEnumerations(PyObject* module);

// The IntEnum of that name; null for "".
PyObject* EnumerationNamed(const char* name);

// Those of an event's arguments; null for one that is no enumeration.
const std::vector<PyObject*>& EnumerationsOf(const scripting::ClassTable& table,
                                             const scripting::Event& event);

}  // namespace quorix::python
