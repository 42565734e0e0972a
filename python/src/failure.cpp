// SPDX-License-Identifier: Apache-2.0
#include "failure.h"

#include <pybind11/pybind11.h>

#include <cstdint>
#include <new>
#include <string_view>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

[[noreturn]] void Throw(plk_status status, const char* field, std::int64_t given,
                        std::int64_t needed, std::uint32_t line, std::uint32_t column,
                        const py::str& text)
{
    const py::object type = py::module_::import("pelkraft._error").attr("PelkraftError");
    const py::object error = type(text, status, field, given, needed, line, column);
    PyErr_SetObject(type.ptr(), error.ptr());
    throw py::error_already_set();
}

// Names of a text may stand in a failure's text, in whatever encoding they have.
py::str Decode(const char* text)
{
    return py::reinterpret_steal<py::str>(PyUnicode_DecodeUTF8(
        text, static_cast<Py_ssize_t>(std::char_traits<char>::length(text)), "backslashreplace"));
}

} // namespace

void ThrowFailure(const plk_failure& failure)
{
    if (failure.status == PLK_NO_MEMORY)
        throw std::bad_alloc();
    Throw(failure.status, failure.field, failure.given, failure.needed, failure.line,
          failure.column, Decode(failure.text));
}

void ThrowRunFailure(plk_failure failure)
{
    if (failure.status == PLK_OVERLAP) {
        const std::string text = std::string_view(failure.field) == "target.base"
                                     ? "out shares bytes with rows; give an array that shares none"
                                     : "out is laid over itself: " + std::string(failure.text);
        Throw(PLK_OVERLAP, "out", failure.given, failure.needed, 0, 0, Decode(text.c_str()));
    }
    ThrowFailure(failure);
}

void ThrowInvalid(const char* field, const std::string& text, std::int64_t given,
                  std::int64_t needed)
{
    Throw(PLK_INVALID, field, given, needed, 0, 0, Decode(text.c_str()));
}

void ThrowTypeError(const std::string& text)
{
    throw py::type_error(text);
}

} // namespace zvk::Pelkraft::Python
