// SPDX-License-Identifier: Apache-2.0
#include "arguments.h"

#include "failure.h"

#include <limits>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

std::string ListOf(const Choices& choices)
{
    std::string list;
    for (const char* choice : choices.names)
        if (choice && *choice)
            list.append(list.empty() ? "'" : ", '").append(choice) += "'";
    return list;
}

} // namespace

std::string Repr(py::handle value)
{
    return py::repr(value).cast<std::string>();
}

std::string TypeName(py::handle value)
{
    return Py_TYPE(value.ptr())->tp_name;
}

std::int64_t ToInt64(py::handle value, const char* name)
{
    const auto number = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    if (!number) {
        if (!PyErr_ExceptionMatches(PyExc_TypeError))
            throw py::error_already_set();
        PyErr_Clear();
        ThrowTypeError(std::string(name) + " must be an integer, not " + TypeName(value));
    }
    int overflow = 0;
    const long long result = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
    if (overflow != 0)
        ThrowInvalid(name, std::string(name) + " is " + Repr(number) + "; 64 bits must hold it");
    return result;
}

std::int32_t ToInt32(py::handle value, const char* name)
{
    const std::int64_t number = ToInt64(value, name);
    const auto result = static_cast<std::int32_t>(number);
    if (result != number)
        ThrowInvalid(name, std::string(name) + " is " + Repr(value) + "; 32 bits must hold it",
                     number, std::numeric_limits<std::int32_t>::max());
    return result;
}

bool ToFlag(py::handle value, const char* name)
{
    if (value.ptr() == Py_True || value.ptr() == Py_False)
        return value.ptr() == Py_True;
    const std::string type = TypeName(value);
    if (type != "numpy.bool_")
        ThrowTypeError(std::string(name) + " must be True or False, not " + Repr(value));
    return PyObject_IsTrue(value.ptr()) == 1;
}

std::int32_t ToChoice(py::handle value, const char* name, const Choices& choices)
{
    if (!py::isinstance<py::str>(value))
        ThrowTypeError(std::string(name) + " must be one of " + ListOf(choices) + ", not " +
                       Repr(value));
    const auto given = value.cast<std::string>();
    std::int32_t index = 0;
    for (const char* choice : choices.names) {
        if (choice && *choice && given == choice)
            return index;
        ++index;
    }
    ThrowInvalid(name, std::string(name) + " is " + Repr(value) + "; it must be one of " +
                           ListOf(choices));
}

std::string ToBytes(py::handle value, const char* name)
{
    if (!PyObject_CheckBuffer(value.ptr()))
        ThrowTypeError(std::string(name) + " must be bytes, not " + TypeName(value));
    const auto bytes = py::reinterpret_steal<py::bytes>(PyBytes_FromObject(value.ptr()));
    if (!bytes)
        throw py::error_already_set();
    return bytes;
}

std::string ToText(py::handle value, const char* name)
{
    if (!py::isinstance<py::str>(value)) {
        if (!PyObject_CheckBuffer(value.ptr()))
            ThrowTypeError(std::string(name) + " must be str or bytes, not " + TypeName(value));
        return ToBytes(value, name);
    }
    // Names that were no UTF-8 when they were read become the same bytes again.
    const auto bytes = py::reinterpret_steal<py::bytes>(
        PyUnicode_AsEncodedString(value.ptr(), "utf-8", "surrogateescape"));
    if (!bytes)
        throw py::error_already_set();
    return bytes;
}

} // namespace zvk::Pelkraft::Python
