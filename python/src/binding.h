// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "arguments.h"

#include <pybind11/pybind11.h>

#include <memory>

namespace zvk::Pelkraft::Python {

// The metaclass of pybind11 serves classes that are derived from, and these are not.
inline pybind11::metaclass PlainMetaclass()
{
    return pybind11::metaclass(reinterpret_cast<PyObject*>(&PyType_Type));
}

// Gives a class its public name, so that it is found, and shown, where users import it from.
template <typename Class>
void ShowInPackage(Class& type)
{
    type.attr("__module__") = "pelkraft";
}

// Has __new__ make the whole object by a factory, whose first argument is the class. So there is no
// object that a constructor has yet to fill, and __init__ can't fill one again.
template <typename Class, typename Factory, typename... Extra>
void MakeByNew(pybind11::class_<Class>& type, const Factory& factory, const Extra&... extra)
{
    type.def_static("__new__", factory, pybind11::arg("cls"), extra...);
    type.attr("__init__") = pybind11::module_::import("builtins").attr("object").attr("__init__");
}

// An object that never changes is its own copy.
template <typename Class>
void CopyAsItself(pybind11::class_<Class>& type)
{
    type.def("__copy__", [](const pybind11::object& self) { return self; });
    type.def("__deepcopy__",
             [](const pybind11::object& self, const pybind11::object&) { return self; });
}

// Lets the objects of a class, which is made from a record and has it, be saved, loaded, compared,
// hashed, pickled and known to dask by that record.
template <typename Class>
void KnowByRecord(pybind11::class_<Class>& type, const char* name)
{
    namespace py = pybind11;
    type.def(
        "save", [](const Class& one) { return py::bytes(one.Record()); },
        R"(save(self)
--

Return a record of this as bytes, the same for equal ones on every machine.)");
    type.def_static(
        "load",
        [](const py::object& record) { return std::make_unique<Class>(ToBytes(record, "record")); },
        py::arg("record"), R"(load(record)
--

Make it again from the bytes that save gave, in this version of the library or an older one.

PelkraftError: the record is damaged or is none, or a later version made it.)");
    type.def(
        "__eq__",
        [](const Class& one, const Class& other) { return one.Record() == other.Record(); },
        py::is_operator());
    type.def("__hash__", [](const Class& one) { return py::hash(py::bytes(one.Record())); });
    CopyAsItself(type);
    // A function of the module could not be pickled, since pybind11 gives it no name that pickle
    // finds.
    type.def("__reduce__", [](const py::object& self) {
        const py::bytes record(self.cast<const Class&>().Record());
        const py::object load =
            py::module_::import("operator").attr("methodcaller")("load", record);
        return py::make_tuple(load, py::make_tuple(py::type::of(self)));
    });
    type.def("__dask_tokenize__",
             [name](const Class& one) { return py::make_tuple(name, py::bytes(one.Record())); });
}

} // namespace zvk::Pelkraft::Python
