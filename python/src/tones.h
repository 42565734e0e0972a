// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Python {

// The tones of a channel, as plk_tones has them.
struct Tones
{
    std::vector<std::uint32_t> inks;
    std::int32_t noInk;
    std::int32_t fullInk;

    bool operator==(const Tones&) const = default;
};

pybind11::tuple InksOf(const Tones& tones);
// The constructor's arguments.
pybind11::tuple FieldsOf(const Tones& tones);

void AddTones(pybind11::module_& module);

} // namespace zvk::Pelkraft::Python
