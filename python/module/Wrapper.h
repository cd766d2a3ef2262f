// The Python object that stands for one of the library's, of a type that its table makes.
//
// An object has one wrapper at a time, so that "is" tells whether two are the same. Handlers belong to the
// wrapper, not to the library's object, which knows the wrapper by a pointer that ends with it: what a
// handler refers to is seen by the garbage collector, whatever refers to the session.
#pragma once

#include <memory>

#include "python/module/Home.h"
#include "python/module/Reference.h"

namespace quorix::python {

class Ear;

struct Wrapper {
    PyObject ob_base;
    PyObject* weakReferences;
    PyObject* handlers;  // name of an event: list of callables; null before the first
    // Made and ended by hand, since Python allocates.
    const scripting::ClassTable* table;
    const void* identity;
    std::shared_ptr<Home> home;
    std::shared_ptr<Body> body;
    std::shared_ptr<Ear> ear;  // once somebody listens
};

// Makes the type of each table, and puts them into `module`.
void MakeTypes(PyObject* module);

// The one wrapper of `object`.
Reference Wrap(const scripting::Object& object);

// What `wrapper` wraps; AutomationError 13 for a foreign object. std::runtime_error on another thread than
// its own.
scripting::Object Unwrap(PyObject* wrapper);

}  // namespace quorix::python
