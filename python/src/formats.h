// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pybind11/pybind11.h>

namespace zvk::Pelkraft::Python {

// A sample that a map puts into a channel.
struct Constant
{
    std::int32_t sample;
};

// Adds Format, which is a plk_format, Constant and Needs.
void AddFormats(pybind11::module_& module);

} // namespace zvk::Pelkraft::Python
