#include "python/module/Listening.h"

#include <stdexcept>

#include "python/module/Convert.h"
#include "python/module/Enumerations.h"

namespace quorix::python {
namespace {

using scripting::Event;

Wrapper& WrapperOf(PyObject* self) {
    Unwrap(self);  // on its own thread
    return *reinterpret_cast<Wrapper*>(self);
}

const Event& EventNamed(const Wrapper& wrapper, PyObject* name) {
    for (const Event& event : wrapper.table->Events()) {
        if (PyUnicode_CompareWithASCIIString(name, event.name) == 0) return event;
    }
    PyErr_Format(PyExc_AttributeError, "%s raises no event %R", wrapper.table->Name(), name);
    throw ErrorIsSet();
}

// What _on and _off are called with.
struct Request {
    Request(PyObject* self, PyObject* arguments) : wrapper(WrapperOf(self)) {
        if (PyArg_ParseTuple(arguments, "UO", &name, &handler) == 0) throw ErrorIsSet();
        event = &EventNamed(wrapper, name);
    }

    Wrapper& wrapper;
    PyObject* name = nullptr;
    PyObject* handler = nullptr;
    const Event* event = nullptr;
};

void Listen(Wrapper& wrapper) {
    if (wrapper.ear) return;
    auto ear = std::make_shared<Ear>(wrapper);
    wrapper.body->connection = wrapper.table->Listen(wrapper.body->instance, ear);
    if (!wrapper.body->connection) throw std::runtime_error("its events are told to its session alone");
    wrapper.handlers = Reference::Steal(PyDict_New()).Release();
    wrapper.ear = std::move(ear);
}

Reference HandlersOf(const Wrapper& wrapper, PyObject* name) {
    PyObject* found = wrapper.handlers != nullptr ? PyDict_GetItemWithError(wrapper.handlers, name) : nullptr;
    return found != nullptr ? Reference::Borrow(found) : Reference::Steal(PyList_New(0));
}

Reference ArgumentsOf(const Wrapper& wrapper, const Event& event, const scripting::Values& values) {
    const std::vector<PyObject*>& enumerations = EnumerationsOf(*wrapper.table, event);
    Reference made = Reference::Steal(PyTuple_New(static_cast<Py_ssize_t>(values.size())));
    for (std::size_t i = 0; i < values.size(); ++i) {
        PyTuple_SET_ITEM(made.Get(), static_cast<Py_ssize_t>(i),
                         ToPython(values[i], enumerations[i]).Release());
    }
    return made;
}

PyObject* CallHandler(PyObject* handler, PyObject* arguments) {
    return OutlivingThreads([&] { return PyObject_CallObject(handler, arguments); });
}

// One that an earlier one took away is not called.
void CallEach(const Reference& handlers, const Reference& arguments) {
    const Reference present = Reference::Steal(PyList_AsTuple(handlers.Get()));
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(present.Get()); ++i) {
        const Reference handler = Reference::Borrow(PyTuple_GET_ITEM(present.Get(), i));
        const int isThere = PySequence_Contains(handlers.Get(), handler.Get());
        if (isThere == 0) continue;
        PyObject* result = isThere < 0 ? nullptr : CallHandler(handler.Get(), arguments.Get());
        if (result == nullptr) PyErr_WriteUnraisable(handler.Get());
        Py_XDECREF(result);
    }
}

}  // namespace

std::size_t Ear::IndexOf(const Event& event) const {
    return static_cast<std::size_t>(&event - table_.Events().data());
}

void Ear::OnEvent(const Event& event, const scripting::Values& arguments) {
    const Lock lock;
    if (wrapper_ == nullptr) return;
    const Reference wrapper = Reference::Borrow(&wrapper_->ob_base);
    try {
        const Reference name = Reference::Steal(PyUnicode_InternFromString(event.name));
        const Reference handlers = HandlersOf(*wrapper_, name.Get());
        CallEach(handlers, ArgumentsOf(*wrapper_, event, arguments));
    } catch (...) {
        SetError();
        PyErr_WriteUnraisable(wrapper.Get());
    }
}

PyObject* On(PyObject* self, PyObject* arguments) {
    return Guarded([&] {
        const Request request(self, arguments);
        Listen(request.wrapper);
        const Reference handlers = HandlersOf(request.wrapper, request.name);
        Check(PyList_Append(handlers.Get(), request.handler));
        Check(PyDict_SetItem(request.wrapper.handlers, request.name, handlers.Get()));
        request.wrapper.ear->Want(*request.event, true);
        return Reference::Borrow(Py_None);
    });
}

PyObject* Off(PyObject* self, PyObject* arguments) {
    return Guarded([&] {
        const Request request(self, arguments);
        const Reference handlers = HandlersOf(request.wrapper, request.name);
        const Py_ssize_t at = PySequence_Index(handlers.Get(), request.handler);
        if (at < 0) throw ErrorIsSet();
        Check(PySequence_DelItem(handlers.Get(), at));
        if (PyList_GET_SIZE(handlers.Get()) == 0) request.wrapper.ear->Want(*request.event, false);
        return Reference::Borrow(Py_None);
    });
}

}  // namespace quorix::python
