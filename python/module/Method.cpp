#include "python/module/Method.h"

#include <deque>
#include <string>

#include "python/module/Convert.h"
#include "python/module/Enumerations.h"
#include "python/module/Wrapper.h"

namespace quorix::python {
namespace {

using scripting::ArgumentError;
using scripting::Values;

struct Method {
    PyObject ob_base;
    vectorcallfunc call;
    const Binding* binding;
};

const Binding& BindingOf(PyObject* method) { return *reinterpret_cast<Method*>(method)->binding; }

std::size_t PositionOf(const Binding& binding, PyObject* name) {
    const auto& parameters = binding.text.parameters;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (PyUnicode_CompareWithASCIIString(name, parameters[i].name) == 0) return i;
    }
    PyErr_Format(PyExc_TypeError, "%s.%s has no argument %R", binding.table.Name(), binding.member.name,
                 name);
    throw ErrorIsSet();
}

void Take(const Binding& binding, Values& values, std::size_t position, PyObject* object) {
    if (position >= binding.member.parameters.size()) throw ArgumentError(ERR_ArgumentCount, position);
    if (!scripting::IsMissing(values[position])) throw ArgumentError(ERR_ArgumentCount, position);
    if (object == Py_None && binding.member.parameters[position].isOptional) return;
    try {
        values[position] = FromPython(object, binding.member.parameters[position].type);
    } catch (const AutomationError& error) {
        throw ArgumentError(error.Number(), position);
    }
}

Values Collect(const Binding& binding, PyObject* const* objects, std::size_t count, PyObject* names) {
    Values values(binding.member.parameters.size());
    for (std::size_t i = 0; i < count; ++i) Take(binding, values, i, objects[i]);
    const Py_ssize_t named = names != nullptr ? PyTuple_GET_SIZE(names) : 0;
    for (Py_ssize_t i = 0; i < named; ++i) {
        Take(binding, values, PositionOf(binding, PyTuple_GET_ITEM(names, i)),
             objects[count + static_cast<std::size_t>(i)]);
    }
    return values;
}

PyObject* Called(PyObject* method, PyObject* const* objects, std::size_t flags, PyObject* names) {
    return Guarded([&] {
        const Binding& binding = BindingOf(method);
        const auto count = static_cast<std::size_t>(PyVectorcall_NARGS(flags));
        if (count == 0) throw AutomationError(ERR_ObjectNotSet);
        return CallMember(binding, objects[0], Collect(binding, objects + 1, count - 1, names));
    });
}

PyObject* BoundTo(PyObject* method, PyObject* self, PyObject*) {
    if (self == nullptr || self == Py_None) return Py_NewRef(method);
    return PyMethod_New(method, self);
}

PyObject* Name(PyObject* method, void*) { return PyUnicode_FromString(BindingOf(method).member.name); }
PyObject* Help(PyObject* method, void*) { return PyUnicode_FromString(BindingOf(method).text.help); }
PyObject* QualifiedName(PyObject* method, void*) {
    return PyUnicode_FromFormat("%s.%s", BindingOf(method).table.Name(), BindingOf(method).member.name);
}
PyObject* Signature(PyObject* method, void*) {
    const Binding& binding = BindingOf(method);
    std::string text = "($self";
    for (std::size_t i = 0; i < binding.text.parameters.size(); ++i) {
        text += std::string(", ") + binding.text.parameters[i].name;
        if (binding.member.parameters[i].isOptional) text += "=None";
    }
    return PyUnicode_FromString((text + ")").c_str());
}

PyTypeObject* MethodType() {
    static PyGetSetDef attributes[] = {{"__name__", Name, nullptr, nullptr, nullptr},
                                       {"__qualname__", QualifiedName, nullptr, nullptr, nullptr},
                                       {"__doc__", Help, nullptr, nullptr, nullptr},
                                       {"__text_signature__", Signature, nullptr, nullptr, nullptr},
                                       {nullptr, nullptr, nullptr, nullptr, nullptr}};
    static PyTypeObject* type = [] {
        static PyTypeObject made{};
        Py_SET_REFCNT(&made, 1);
        made.tp_name = "quorix.method";
        made.tp_basicsize = sizeof(Method);
        made.tp_flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_VECTORCALL | Py_TPFLAGS_METHOD_DESCRIPTOR;
        made.tp_vectorcall_offset = offsetof(Method, call);
        made.tp_call = PyVectorcall_Call;
        made.tp_descr_get = BoundTo;
        made.tp_getset = attributes;
        Check(PyType_Ready(&made));
        return &made;
    }();
    return type;
}

}  // namespace

const Binding& Bind(const scripting::ClassTable& table, const scripting::Member& member) {
    static std::deque<Binding> all;  // for as long as their types
    const MemberText& text = TextOf(table, member);
    return all.emplace_back(Binding{table, member, text, EnumerationNamed(text.enumeration)});
}

Reference CallMember(const Binding& binding, PyObject* self, Values arguments) {
    const scripting::Object object = Unwrap(self);
    if (object.table != &binding.table) throw AutomationError(ERR_TypeMismatch);
    return ToPython(scripting::Call(binding.member, object.instance, std::move(arguments)),
                    binding.enumeration);
}

Reference MakeMethod(const Binding& binding) {
    Reference made = Reference::Steal(MethodType()->tp_alloc(MethodType(), 0));
    auto* method = reinterpret_cast<Method*>(made.Get());
    method->call = Called;
    method->binding = &binding;
    return made;
}

}  // namespace quorix::python
