// SPDX-License-Identifier: Apache-2.0
#pragma once

// NumPy's functions stand in a table that ImportNumPy fetches; its own header takes each file for
// the one that does, unless told otherwise.
#define PY_ARRAY_UNIQUE_SYMBOL pelkraft_numpy_api
#ifndef PELKRAFT_IMPORTS_NUMPY
#define NO_IMPORT_ARRAY
#endif
#define NPY_NO_DEPRECATED_API NPY_1_22_API_VERSION

#include <pybind11/pybind11.h>

#include <numpy/arrayobject.h>
