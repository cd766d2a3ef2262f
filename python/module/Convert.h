// Values between Python and the tables.
#pragma once

#include "python/module/Reference.h"
#include "quorix/scripting/ClassTable.h"

namespace quorix::python {

// What a parameter of that type takes of a Python object. AutomationError 13 or 6 where it takes nothing.
scripting::Value FromPython(PyObject* object, const scripting::Type& type);

// `enumeration` is the IntEnum that a number belongs to, or null.
Reference ToPython(const scripting::Value& value, PyObject* enumeration = nullptr);

Reference TextToPython(StringView text);

// Runs `body`, which returns a Reference; what it throws becomes Python's error, and null is returned.
template <class Body>
PyObject* Guarded(Body body);

// Turns the exception being handled into Python's error.
void SetError();

template <class Body>
PyObject* Guarded(Body body) {
    try {
        return body().Release();
    } catch (...) {
        SetError();
        return nullptr;
    }
}

// The class of the errors, made by the module.
extern PyObject* automationError;

}  // namespace quorix::python
