// SPDX-License-Identifier: Apache-2.0
#include "array_rows.h"
#include "dither.h"
#include "formats.h"
#include "pattern.h"
#include "plan.h"

#include <dlfcn.h>

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

std::string LibraryPath()
{
    Dl_info info = {};
    if (dladdr(reinterpret_cast<const void*>(&plk_plan_create), &info) == 0 || !info.dli_fname)
        return {};
    return info.dli_fname;
}

void AddAll(py::module_& module)
{
    // Each documented function tells its signature in the first line of its words, as Python's own.
    py::options options;
    options.disable_function_signatures();
    AddFormats(module);
    AddPlan(module);
    AddPattern(module);
    AddTones(module);
    AddDither(module);
    module.attr("__version__") = PELKRAFT_VERSION;
    module.attr("_library") = LibraryPath();
    module.attr("_compiler") = __VERSION__;
}

// Runs once for each interpreter that imports the module.
int Execute(PyObject* object)
{
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        PyErr_SetString(PyExc_ImportError,
                        "pelkraft can be imported in the main interpreter only, since NumPy and "
                        "its own classes can't be shared; use threads or processes in place of "
                        "subinterpreters");
        return -1;
    }
    try {
        if (!ImportNumPy())
            return -1;
        auto module = py::reinterpret_borrow<py::module_>(object);
        AddAll(module);
        return 0;
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_ImportError, error.what());
    }
    return -1;
}

} // namespace
} // namespace zvk::Pelkraft::Python

// The macro of pybind11 would run once for all interpreters and leave the others unrefused.
// NOLINTNEXTLINE(bugprone-reserved-identifier): Python looks for the module _core by this name.
extern "C" PYBIND11_EXPORT PyObject* PyInit__core()
{
    static PyModuleDef_Slot slots[] = {
        {Py_mod_exec, reinterpret_cast<void*>(&zvk::Pelkraft::Python::Execute)}, {0, nullptr}};
    static PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                                     "pelkraft._core",
                                     nullptr,
                                     0,
                                     nullptr,
                                     slots,
                                     nullptr,
                                     nullptr,
                                     nullptr};
    return PyModuleDef_Init(&definition);
}
