#include "python/module/Convert.h"

#include <algorithm>
#include <new>
#include <string>

#include "python/module/Wrapper.h"
#include "quorix/base/AutomationError.h"

namespace quorix::python {

PyObject* automationError = nullptr;

namespace {

using scripting::Kind;
using scripting::Type;
using scripting::Value;

[[noreturn]] void Refuse() { throw AutomationError(ERR_TypeMismatch); }

bool IsSurrogate(char16_t unit) { return (unit & 0xF800U) == 0xD800U; }

String WideText(PyObject* text) {
    const auto length = static_cast<std::size_t>(PyUnicode_GET_LENGTH(text));
    const auto* units = static_cast<const Py_UCS4*>(PyUnicode_DATA(text));
    String made;
    for (std::size_t i = 0; i < length; ++i) {
        const Py_UCS4 character = units[i];
        if (character < 0x10000U) {
            made += static_cast<char16_t>(character);
        } else {
            made += static_cast<char16_t>(Py_UNICODE_HIGH_SURROGATE(character));
            made += static_cast<char16_t>(Py_UNICODE_LOW_SURROGATE(character));
        }
    }
    return made;
}

String TextFrom(PyObject* object) {
    if (!PyUnicode_Check(object)) Refuse();
    Check(PyUnicode_READY(object));
    const auto length = static_cast<std::size_t>(PyUnicode_GET_LENGTH(object));
    switch (PyUnicode_KIND(object)) {
        case PyUnicode_1BYTE_KIND: {
            const auto* units = PyUnicode_1BYTE_DATA(object);
            return {units, units + length};
        }
        case PyUnicode_2BYTE_KIND: {
            const auto* units = PyUnicode_2BYTE_DATA(object);
            return {units, units + length};
        }
        default: return WideText(object);
    }
}

std::int32_t NumberFrom(PyObject* object) {
    if (!PyLong_Check(object) || PyBool_Check(object)) Refuse();
    int overflow = 0;
    const long number = PyLong_AsLongAndOverflow(object, &overflow);
    const auto narrow = static_cast<std::int32_t>(number);
    if (overflow != 0 || narrow != number) throw AutomationError(ERR_Overflow);
    return narrow;
}

scripting::ByteArray BytesFrom(PyObject* object) {
    Py_buffer view;
    if (PyObject_GetBuffer(object, &view, PyBUF_SIMPLE) != 0) {
        PyErr_Clear();
        Refuse();
    }
    scripting::ByteArray bytes(static_cast<const char*>(view.buf), static_cast<std::size_t>(view.len));
    PyBuffer_Release(&view);
    return bytes;
}

struct MakeObject {
    PyObject* enumeration;

    Reference operator()(scripting::Missing) const { return Reference::Borrow(Py_None); }
    Reference operator()(scripting::Nothing) const { return Reference::Borrow(Py_None); }
    Reference operator()(bool value) const { return Reference::Borrow(value ? Py_True : Py_False); }
    Reference operator()(std::int16_t value) const { return Number(value); }
    Reference operator()(std::int32_t value) const { return Number(value); }
    Reference operator()(const String& text) const { return TextToPython(text); }
    Reference operator()(const scripting::ByteArray& bytes) const {
        return Reference::Steal(
            PyBytes_FromStringAndSize(bytes.data(), static_cast<Py_ssize_t>(bytes.size())));
    }
    Reference operator()(const scripting::Object& object) const {
        return object.instance ? Wrap(object) : Reference::Borrow(Py_None);
    }
    Reference operator()(const scripting::Values& elements) const {
        Reference list = Reference::Steal(PyList_New(0));
        for (const Value& element : elements) Check(PyList_Append(list.Get(), ToPython(element).Get()));
        return list;
    }

    // A number that the enumeration does not name stays a number.
    Reference Number(long value) const {
        Reference number = Reference::Steal(PyLong_FromLong(value));
        if (enumeration == nullptr) return number;
        Reference named = Reference::Steal(PyObject_GetAttrString(enumeration, "_value2member_map_"));
        PyObject* found = PyDict_GetItemWithError(named.Get(), number.Get());
        return found != nullptr ? Reference::Borrow(found) : number;
    }
};

void RaiseAutomationError(const AutomationError& error, const std::string& text) {
    Reference made = Reference::Steal(PyObject_CallFunction(automationError, "s", text.c_str()));
    Reference number = Reference::Steal(PyLong_FromLong(error.Number()));
    Check(PyObject_SetAttrString(made.Get(), "number", number.Get()));
    PyErr_SetObject(automationError, made.Get());
}

}  // namespace

Value FromPython(PyObject* object, const Type& type) {
    if (object == Py_None) return scripting::Nothing();
    switch (type.kind) {
        case Kind::Boolean:
            if (!PyBool_Check(object)) Refuse();
            return object == Py_True;
        case Kind::Int16:
        case Kind::Int32: return NumberFrom(object);
        case Kind::Text: return TextFrom(object);
        case Kind::Bytes: return BytesFrom(object);
        case Kind::Object: return Unwrap(object);
        case Kind::Index:
            if (PyUnicode_Check(object)) return TextFrom(object);
            return NumberFrom(object);
        case Kind::Data:
            if (PyUnicode_Check(object)) return TextFrom(object);
            return BytesFrom(object);
        default: Refuse();
    }
}

Reference ToPython(const Value& value, PyObject* enumeration) {
    return std::visit(MakeObject{enumeration}, static_cast<const Value::variant&>(value));
}

// Python's own strings hold no surrogate pairs; without any, the units are the characters.
Reference TextToPython(StringView text) {
    const auto length = static_cast<Py_ssize_t>(text.size());
    if (std::none_of(text.begin(), text.end(), IsSurrogate)) {
        return Reference::Steal(PyUnicode_FromKindAndData(PyUnicode_2BYTE_KIND, text.data(), length));
    }
    int order = PY_BIG_ENDIAN ? 1 : -1;
    return Reference::Steal(PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data()), length * 2,
                                                  "surrogatepass", &order));
}

void SetError() {
    try {
        throw;
    } catch (const ErrorIsSet&) {
    } catch (const scripting::ArgumentError& error) {
        RaiseAutomationError(
            error, std::string(error.what()) + " (argument " + std::to_string(error.Position() + 1) + ")");
    } catch (const AutomationError& error) {
        RaiseAutomationError(error, error.what());
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    }
}

}  // namespace quorix::python
