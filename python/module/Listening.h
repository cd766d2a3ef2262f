// Handlers of events.
#pragma once

#include <vector>

#include "python/module/Wrapper.h"

namespace quorix::python {

// Passes the events of one object on to the handlers of its wrapper.
class Ear : public scripting::Listener {
public:
    explicit Ear(Wrapper& wrapper)
        : table_(*wrapper.table), wrapper_(&wrapper), wanted_(table_.Events().size()) {}

    // The wrapper ends.
    void Close() { wrapper_ = nullptr; }
    void Want(const scripting::Event& event, bool isWanted) { wanted_[IndexOf(event)] = isWanted; }

    bool Wants(const scripting::Event& event) const override { return wanted_[IndexOf(event)]; }
    void OnEvent(const scripting::Event& event, const scripting::Values& arguments) override;

private:
    std::size_t IndexOf(const scripting::Event& event) const;

    const scripting::ClassTable& table_;
    Wrapper* wrapper_;  // null once it has ended; behind the interpreter's lock
    std::vector<bool> wanted_;
};

// The methods _on(name, handler) and _off(name, handler) of every class that raises events.
PyObject* On(PyObject* self, PyObject* arguments);
PyObject* Off(PyObject* self, PyObject* arguments);

}  // namespace quorix::python
