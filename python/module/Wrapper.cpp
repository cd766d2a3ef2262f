#include "python/module/Wrapper.h"

#include <deque>
#include <map>
#include <new>
#include <stdexcept>
#include <string>

#include <structmember.h>

#include "python/module/Convert.h"
#include "python/module/Listening.h"
#include "python/module/Method.h"
#include "quorix/scripting/Classes.h"

namespace quorix::python {
namespace {

using scripting::ClassTable;
using scripting::Member;
using scripting::MemberKind;

struct Property {
    const Binding* get = nullptr;
    const Binding* put = nullptr;
};

// A table as a type of Python's. These members are those that make a collection.
struct Class {
    PyTypeObject* type = nullptr;
    const Binding* item = nullptr;
    const Binding* count = nullptr;
    const Binding* elements = nullptr;
    const Binding* named = nullptr;
    std::map<std::string, Property> properties;
};

// Both live as long as the program; the interpreter's lock guards them.
std::map<const ClassTable*, Class>& AllClasses() {
    static auto& all = *new std::map<const ClassTable*, Class>;
    return all;
}
std::map<std::pair<const void*, const ClassTable*>, Wrapper*>& AllWrappers() {
    static auto& all = *new std::map<std::pair<const void*, const ClassTable*>, Wrapper*>;
    return all;
}

Wrapper& WrapperOf(PyObject* self) { return *reinterpret_cast<Wrapper*>(self); }
const Class& ClassOf(PyObject* self) { return AllClasses().at(WrapperOf(self).table); }

PyTypeObject* baseType = nullptr;

Reference Make(PyTypeObject* type, const scripting::Object& object) {
    Reference made = Reference::Steal(type->tp_alloc(type, 0));
    Wrapper& wrapper = WrapperOf(made.Get());
    new (&wrapper.home) std::shared_ptr<Home>(Home::Current());
    new (&wrapper.body) std::shared_ptr<Body>(wrapper.home->Add(object.instance));
    new (&wrapper.ear) std::shared_ptr<Ear>();
    wrapper.table = object.table;
    wrapper.identity = object.identity;
    AllWrappers()[{object.identity, object.table}] = &wrapper;
    return made;
}

int Traverse(PyObject* self, visitproc visit, void* arg) {
    Py_VISIT(Py_TYPE(self));
    Py_VISIT(WrapperOf(self).handlers);
    return 0;
}

int Clear(PyObject* self) {
    Py_CLEAR(WrapperOf(self).handlers);
    return 0;
}

void Forget(Wrapper& wrapper) {
    if (wrapper.table == nullptr) return;  // it was never made
    const auto found = AllWrappers().find({wrapper.identity, wrapper.table});
    if (found != AllWrappers().end() && found->second == &wrapper) AllWrappers().erase(found);
    if (wrapper.ear) wrapper.ear->Close();
    wrapper.home->End(std::move(wrapper.body));
    std::destroy_at(&wrapper.ear);
    std::destroy_at(&wrapper.body);
    std::destroy_at(&wrapper.home);
}

void Dealloc(PyObject* self) {
    PyTypeObject* type = Py_TYPE(self);
    PyObject_GC_UnTrack(self);
    Wrapper& wrapper = WrapperOf(self);
    if (wrapper.weakReferences != nullptr) PyObject_ClearWeakRefs(self);
    Clear(self);
    Forget(wrapper);
    type->tp_free(self);
    Py_DECREF(type);
}

// The class behind `type`, which may be one of Python's derived from it.
const ClassTable& CreatableOf(PyTypeObject* type) {
    for (const auto& [table, made] : AllClasses()) {
        if (table->Create() && PyType_IsSubtype(type, made.type) != 0) return *table;
    }
    PyErr_Format(PyExc_TypeError, "%s: only the library makes them", type->tp_name);
    throw ErrorIsSet();
}

PyObject* New(PyTypeObject* type, PyObject*, PyObject*) {
    return Guarded([&] {
        const ClassTable& table = CreatableOf(type);
        Home::Current()->ComeBy();
        return Make(type, table.MakeObject());
    });
}

// Keyword arguments are properties to set.
int Initialize(PyObject* self, PyObject* arguments, PyObject* properties) {
    if (PyTuple_GET_SIZE(arguments) != 0) {
        PyErr_Format(PyExc_TypeError, "%s takes properties by name", Py_TYPE(self)->tp_name);
        return -1;
    }
    PyObject* name = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t at = 0;
    while (properties != nullptr && PyDict_Next(properties, &at, &name, &value) != 0) {
        if (PyObject_SetAttr(self, name, value) != 0) return -1;
    }
    return 0;
}

PyObject* GetProperty(PyObject* self, void* closure) {
    return Guarded([&] { return CallMember(*static_cast<Property*>(closure)->get, self, {}); });
}

int PutProperty(PyObject* self, PyObject* value, void* closure) {
    const Binding& put = *static_cast<Property*>(closure)->put;
    PyObject* done = Guarded([&] {
        if (value == nullptr) throw AutomationError(ERR_InvalidCall);
        return CallMember(put, self, {FromPython(value, put.member.parameters[0].type)});
    });
    Py_XDECREF(done);
    return done != nullptr ? 0 : -1;
}

Py_ssize_t Length(PyObject* self) {
    PyObject* count = Guarded([&] { return CallMember(*ClassOf(self).count, self, {}); });
    if (count == nullptr) return -1;
    const Py_ssize_t length = PyLong_AsSsize_t(count);
    Py_DECREF(count);
    return length;
}

PyObject* ItemAt(PyObject* self, PyObject* index) {
    return Guarded([&] {
        const Binding& item = *ClassOf(self).item;
        return CallMember(item, self, {FromPython(index, item.member.parameters[0].type)});
    });
}

Reference ElementsOf(PyObject* self) { return CallMember(*ClassOf(self).elements, self, {}); }

// Over the elements that are there now.
PyObject* Iterate(PyObject* self) {
    return Guarded([&] { return Reference::Steal(PyObject_GetIter(ElementsOf(self).Get())); });
}

bool HasKey(PyObject* self, const Binding& item, PyObject* key) {
    try {
        CallMember(item, self, {FromPython(key, item.member.parameters[0].type)});
        return true;
    } catch (const AutomationError& error) {
        if (error.Number() != ERR_InvalidCall) throw;
        return false;
    }
}

// A text is a key, anything else an element.
int Contains(PyObject* self, PyObject* element) {
    int answer = -1;
    PyObject* done = Guarded([&] {
        const Binding& item = *ClassOf(self).item;
        const bool hasKeys = item.member.parameters[0].type.kind == scripting::Kind::Index;
        answer = hasKeys && PyUnicode_Check(element) ? static_cast<int>(HasKey(self, item, element))
                                                     : PySequence_Contains(ElementsOf(self).Get(), element);
        if (answer < 0) throw ErrorIsSet();
        return Reference::Borrow(Py_None);
    });
    Py_XDECREF(done);
    return done != nullptr ? answer : -1;
}

PyMethodDef listeningMethods[] = {
    {"_on", On, METH_VARARGS, "Calls a handler with the arguments of each event of that name."},
    {"_off", Off, METH_VARARGS, "Calls it no longer."},
    {nullptr, nullptr, 0, nullptr},
};

const Binding* BindNamed(const ClassTable& table, const char* name) {
    const Member* member = table.Find(name, MemberKind::Get);
    return member != nullptr ? &Bind(table, *member) : nullptr;
}

void BindCollection(Class& made, const ClassTable& table) {
    made.elements = BindNamed(table, "_NewEnum");
    made.item = BindNamed(table, "Item");
    made.count = BindNamed(table, table.Find("Count", MemberKind::Get) != nullptr ? "Count" : "length");
}

// A member that takes arguments is called, also one to get.
bool IsProperty(const Member& member) {
    return member.kind == MemberKind::Put || (member.kind == MemberKind::Get && member.parameters.empty());
}

void Add(PyTypeObject* type, const char* name, const Reference& attribute) {
    Check(PyObject_SetAttrString(reinterpret_cast<PyObject*>(type), name, attribute.Get()));
}

void AddProperty(PyTypeObject* type, const std::string& name, Property& property) {
    static std::deque<PyGetSetDef> definitions;  // for as long as the types
    const Binding& any = property.get != nullptr ? *property.get : *property.put;
    definitions.push_back({name.c_str(), property.get != nullptr ? GetProperty : nullptr,
                           property.put != nullptr ? PutProperty : nullptr, any.text.help, &property});
    Add(type, name.c_str(), Reference::Steal(PyDescr_NewGetSet(type, &definitions.back())));
}

void AddMembers(Class& made, const ClassTable& table) {
    for (const Member& member : table.Members()) {
        if (member.name == std::string("_NewEnum")) continue;
        const Binding& binding = Bind(table, member);
        if (!IsProperty(member)) {
            Add(made.type, member.name, MakeMethod(binding));
        } else {
            Property& property = made.properties[member.name];
            (member.kind == MemberKind::Put ? property.put : property.get) = &binding;
        }
    }
    for (auto& [name, property] : made.properties) AddProperty(made.type, name, property);
}

// A slot's function as the interpreter wants it.
template <class Function>
void* Slot(Function* function) {
    return reinterpret_cast<void*>(function);
}

PyTypeObject* MakeType(PyObject* module, const char* name, std::vector<PyType_Slot> slots,
                       unsigned long flags, PyTypeObject* base) {
    static std::deque<std::string> names;
    const std::string& full = names.emplace_back(std::string("quorix.") + name);
    slots.push_back({0, nullptr});
    PyType_Spec spec = {full.c_str(), sizeof(Wrapper), 0, 0, slots.data()};
    spec.flags = static_cast<unsigned>(Py_TPFLAGS_DEFAULT | flags);
    const Reference made =
        Reference::Steal(PyType_FromModuleAndSpec(module, &spec, reinterpret_cast<PyObject*>(base)));
    Check(PyModule_AddObjectRef(module, name, made.Get()));
    return reinterpret_cast<PyTypeObject*>(Reference(made).Release());  // for as long as the program
}

PyTypeObject* MakeBase(PyObject* module) {
    static PyMemberDef members[] = {
        {"__weaklistoffset__", T_PYSSIZET, offsetof(Wrapper, weakReferences), READONLY, nullptr},
        {nullptr, 0, 0, 0, nullptr},
    };
    return MakeType(module, "Object",
                    {{Py_tp_doc, const_cast<char*>("Any object of the library's.")},
                     {Py_tp_new, Slot(New)},
                     {Py_tp_init, Slot(Initialize)},
                     {Py_tp_dealloc, Slot(Dealloc)},
                     {Py_tp_traverse, Slot(Traverse)},
                     {Py_tp_clear, Slot(Clear)},
                     {Py_tp_members, members}},
                    Py_TPFLAGS_BASETYPE | Py_TPFLAGS_HAVE_GC, nullptr);
}

std::vector<PyType_Slot> SlotsOf(const ClassTable& table, const Class& made) {
    std::vector<PyType_Slot> slots = {{Py_tp_doc, const_cast<char*>(HelpOf(table))}};
    if (!table.Events().empty()) slots.push_back({Py_tp_methods, listeningMethods});
    if (made.elements == nullptr) return slots;
    slots.insert(slots.end(), {{Py_mp_length, Slot(Length)},
                               {Py_mp_subscript, Slot(ItemAt)},
                               {Py_tp_iter, Slot(Iterate)},
                               {Py_sq_contains, Slot(Contains)}});
    return slots;
}

}  // namespace

void MakeTypes(PyObject* module) {
    baseType = MakeBase(module);
    for (const ClassTable* table : scripting::Classes()) {
        Class& made = AllClasses()[table];
        BindCollection(made, *table);
        const unsigned long flags = table->Create() ? Py_TPFLAGS_BASETYPE : 0;
        made.type = MakeType(module, table->Name(), SlotsOf(*table, made), flags, baseType);
        AddMembers(made, *table);
    }
}

Reference Wrap(const scripting::Object& object) {
    const auto found = AllWrappers().find({object.identity, object.table});
    if (found != AllWrappers().end()) return Reference::Borrow(&found->second->ob_base);
    return Make(AllClasses().at(object.table).type, object);
}

scripting::Object Unwrap(PyObject* object) {
    if (PyObject_TypeCheck(object, baseType) == 0) throw AutomationError(ERR_TypeMismatch);
    const Wrapper& wrapper = WrapperOf(object);
    if (wrapper.table == nullptr) throw AutomationError(ERR_ObjectNotSet);
    if (!wrapper.home->IsCurrent()) throw std::runtime_error("the object belongs to another thread");
    wrapper.home->ComeBy();
    return {wrapper.body->instance, wrapper.table, wrapper.identity};
}

}  // namespace quorix::python
