// The module itself: types, enumerations, the loop, and what the stubs are made from.
#include <poll.h>

#include "python/module/Convert.h"
#include "python/module/Descriptions.h"
#include "python/module/Enumerations.h"
#include "python/module/Wrapper.h"
#include "quorix/platform/MessageLoop.h"
#include "quorix/scripting/Classes.h"

namespace quorix::python {
namespace {

using scripting::ClassTable;
using scripting::Kind;
using scripting::Member;
using scripting::MemberKind;
using scripting::Type;

thread_local bool quit = false;

int LoopDescriptor() {
    Home::Current();  // has the loop
    return MessageLoop::Descriptor();
}

// A signal ends the waiting, so that its handler runs.
void WaitForWork() {
    pollfd loop = {LoopDescriptor(), POLLIN, 0};
    Unlocked([&] { return poll(&loop, 1, -1); });
    Check(PyErr_CheckSignals());
}

void Turn() {
    Home::Current()->ComeBy();
    MessageLoop::Dispatch();
}

PyObject* Run(PyObject*, PyObject*) {
    return Guarded([] {
        while (!quit) {
            WaitForWork();
            Turn();
        }
        quit = false;
        return Reference::Borrow(Py_None);
    });
}

PyObject* Quit(PyObject*, PyObject*) {
    quit = true;
    Py_RETURN_NONE;
}

PyObject* Descriptor(PyObject*, PyObject*) { return PyLong_FromLong(LoopDescriptor()); }

PyObject* Dispatch(PyObject*, PyObject*) {
    return Guarded([] {
        Turn();
        return Reference::Borrow(Py_None);
    });
}

const char* NameOf(Kind kind) {
    switch (kind) {
        case Kind::Boolean: return "bool";
        case Kind::Int16:
        case Kind::Int32: return "int";
        case Kind::Text: return "str";
        case Kind::Bytes: return "bytes";
        case Kind::Index: return "int | str";
        case Kind::Data: return "str | bytes";
        case Kind::List: return "list";
        default: return "None";
    }
}

// A number by the enumeration that it belongs to, an object by its class.
std::string NameOf(const Type& type, const char* enumeration) {
    if (*enumeration != '\0') return enumeration;
    if (type.kind == Kind::Object) return type.table().Name();
    return std::string(NameOf(type.kind)) + (type.isOptional ? " | None" : "");
}

Reference ParametersOf(const std::vector<scripting::Parameter>& parameters, const MemberText& text) {
    Reference list = Reference::Steal(PyList_New(0));
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const auto& [name, enumeration] = text.parameters[i];
        const Reference one =
            Reference::Steal(Py_BuildValue("(ssO)", name, NameOf(parameters[i].type, enumeration).c_str(),
                                           parameters[i].isOptional ? Py_True : Py_False));
        Check(PyList_Append(list.Get(), one.Get()));
    }
    return list;
}

const char* NameOf(MemberKind kind) {
    return kind == MemberKind::Get ? "get" : kind == MemberKind::Put ? "put" : "method";
}

// (kind, name, parameters, result, help) of each.
Reference MembersOf(const ClassTable& table) {
    Reference list = Reference::Steal(PyList_New(0));
    for (const Member& member : table.Members()) {
        const MemberText& text = TextOf(table, member);
        const Reference one = Reference::Steal(Py_BuildValue(
            "(ssOss)", NameOf(member.kind), member.name, ParametersOf(member.parameters, text).Get(),
            NameOf(member.result, text.enumeration).c_str(), text.help));
        Check(PyList_Append(list.Get(), one.Get()));
    }
    return list;
}

Reference EventsOf(const ClassTable& table) {
    Reference list = Reference::Steal(PyList_New(0));
    for (const scripting::Event& event : table.Events()) {
        const MemberText& text = TextOf(table, event);
        std::vector<scripting::Parameter> parameters;
        for (const Type& type : event.parameters) parameters.push_back({type, false});
        const Reference one = Reference::Steal(
            Py_BuildValue("(sOs)", event.name, ParametersOf(parameters, text).Get(), text.help));
        Check(PyList_Append(list.Get(), one.Get()));
    }
    return list;
}

// (name, help, whether a program can make one, members, events) of each class.
PyObject* Tables(PyObject*, PyObject*) {
    return Guarded([] {
        Reference list = Reference::Steal(PyList_New(0));
        for (const ClassTable* table : scripting::Classes()) {
            const Reference one = Reference::Steal(
                Py_BuildValue("(ssOOO)", table->Name(), HelpOf(*table), table->Create() ? Py_True : Py_False,
                              MembersOf(*table).Get(), EventsOf(*table).Get()));
            Check(PyList_Append(list.Get(), one.Get()));
        }
        return list;
    });
}

PyMethodDef functions[] = {
    {"run", Run, METH_NOARGS, "Delivers events until quit is called, from inside one of them."},
    {"quit", Quit, METH_NOARGS, "Ends run of this thread, or the next one."},
    {"descriptor", Descriptor, METH_NOARGS,
     "A descriptor of this thread's that is readable when there is something to do."},
    {"dispatch", Dispatch, METH_NOARGS, "Does some of it."},
    {"_tables", Tables, METH_NOARGS, "Every class, member and event."},
    {nullptr, nullptr, 0, nullptr},
};

PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                          "quorix._quorix",
                          "Jabber instant messaging.",
                          -1,
                          functions,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

Reference Make() {
    Reference module = Reference::Steal(PyModule_Create(&definition));
    automationError =
        Reference::Steal(PyErr_NewExceptionWithDoc(
                             "quorix.AutomationError",
                             "What an impossible call ends with. Its number tells which.", nullptr, nullptr))
            .Release();
    Check(PyModule_AddObjectRef(module.Get(), "AutomationError", automationError));
    MakeEnumerations(module.Get());
    MakeTypes(module.Get());
    return module;
}

}  // namespace
}  // namespace quorix::python

PyMODINIT_FUNC PyInit__quorix() {
    using namespace quorix::python;
    return Guarded(Make);
}
