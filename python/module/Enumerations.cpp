#include "python/module/Enumerations.h"

#include <map>
#include <string>

#include "python/module/Descriptions.h"

namespace quorix::python {
namespace {

// They live as long as the program.
std::map<std::string, PyObject*>& All() {
    static std::map<std::string, PyObject*> all;
    return all;
}

Reference MembersOf(const Enumeration& enumeration) {
    Reference members = Reference::Steal(PyList_New(0));
    for (const auto& [name, value] : enumeration.values) {
        Check(PyList_Append(members.Get(), Reference::Steal(Py_BuildValue("(si)", name, value)).Get()));
    }
    return members;
}

void Make(PyObject* module, PyObject* intEnum, const Enumeration& enumeration) {
    const Reference members = MembersOf(enumeration);
    const Reference arguments = Reference::Steal(Py_BuildValue("(sO)", enumeration.name, members.Get()));
    const Reference options = Reference::Steal(Py_BuildValue("{ss}", "module", "quorix"));
    Reference made = Reference::Steal(PyObject_Call(intEnum, arguments.Get(), options.Get()));
    const Reference help = Reference::Steal(PyUnicode_FromString(enumeration.help));
    Check(PyObject_SetAttrString(made.Get(), "__doc__", help.Get()));
    Check(PyModule_AddObjectRef(module, enumeration.name, made.Get()));
    for (const auto& [name, value] : enumeration.values) {
        const Reference member = Reference::Steal(PyObject_GetAttrString(made.Get(), name));
        Check(PyModule_AddObjectRef(module, name, member.Get()));
    }
    All()[enumeration.name] = made.Release();
}

}  // namespace

void MakeEnumerations(PyObject* module) {
    const Reference library = Reference::Steal(PyImport_ImportModule("enum"));
    const Reference intEnum = Reference::Steal(PyObject_GetAttrString(library.Get(), "IntEnum"));
    for (const Enumeration& enumeration : Enumerations()) Make(module, intEnum.Get(), enumeration);
}

PyObject* EnumerationNamed(const char* name) {
    const auto found = All().find(name);
    return found != All().end() ? found->second : nullptr;
}

const std::vector<PyObject*>& EnumerationsOf(const scripting::ClassTable& table,
                                             const scripting::Event& event) {
    static std::map<const scripting::Event*, std::vector<PyObject*>> all;
    const auto [found, isNew] = all.try_emplace(&event);
    if (isNew) {
        for (const auto& parameter : TextOf(table, event).parameters) {
            found->second.push_back(EnumerationNamed(parameter.enumeration));
        }
    }
    return found->second;
}

}  // namespace quorix::python
