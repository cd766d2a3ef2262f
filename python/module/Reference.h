// Python's objects, counted; and its errors on their way through C++.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <unistd.h>

#include <utility>

namespace quorix::python {

// Python's own error indicator is set.
struct ErrorIsSet {};

// Owns one reference.
class Reference {
public:
    Reference() = default;
    ~Reference() { Py_XDECREF(object_); }
    Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Reference& operator=(Reference other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    Reference(const Reference& other) : object_(Py_XNewRef(other.object_)) {}

    static Reference Borrow(PyObject* object) { return Reference(Py_XNewRef(object)); }
    // What a call of Python's returned as new. Throws ErrorIsSet for null.
    static Reference Steal(PyObject* made) {
        if (made == nullptr) throw ErrorIsSet();
        return Reference(made);
    }

    PyObject* Get() const { return object_; }
    PyObject* Release() { return std::exchange(object_, nullptr); }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit Reference(PyObject* object) : object_(object) {}

    PyObject* object_ = nullptr;
};

inline void Check(int result) {
    if (result < 0) throw ErrorIsSet();
}

// An interpreter that ends also ends each thread that wants its lock meanwhile, by unwinding it. The
// library's frames below `call`, one of Python's functions, are no place for that, so the thread stays until
// the process is gone. Python's functions throw nothing else.
template <class Call>
auto OutlivingThreads(Call call) {
    try {
        return call();
    } catch (...) {
        for (;;) pause();
    }
}

// Lets other threads of Python's run during `wait`, which throws nothing.
template <class Wait>
auto Unlocked(Wait wait) {
    if (Py_IsInitialized() == 0 || PyGILState_Check() == 0) return wait();
    PyThreadState* state = PyEval_SaveThread();
    auto result = wait();
    OutlivingThreads([state] { PyEval_RestoreThread(state); });
    return result;
}

// Holds the interpreter's lock, whoever had it.
class Lock {
public:
    Lock() : state_(OutlivingThreads(PyGILState_Ensure)) {}
    ~Lock() { PyGILState_Release(state_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    PyGILState_STATE state_;
};

}  // namespace quorix::python
