// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "array_rows.h"
#include "tones.h"

#include "pelkraft/dither.h"

#include <memory>
#include <vector>

namespace zvk::Pelkraft::Python {

constexpr std::size_t maskSide = 256;
constexpr std::size_t maskRanks = maskSide * maskSide;

// A dither as it is asked for. Equal ones give equal steps by the same road.
struct DitherRequest
{
    std::vector<Tones> tones;
    std::int32_t bits = 8;
    // Empty for the library's own.
    std::vector<std::uint16_t> mask;
    std::int32_t road = PLK_ROAD_AUTOMATIC;

    bool operator==(const DitherRequest&) const = default;
};

// A dither of the library, and what it asks of arrays. Never changes.
class Dither
{
public:
    explicit Dither(DitherRequest newRequest);

    pybind11::object Run(pybind11::handle rows, pybind11::handle x, pybind11::handle y,
                         pybind11::handle out) const;

    const DitherRequest& Request() const { return request; }

private:
    struct Deleter
    {
        void operator()(plk_dither* dither) const { plk_dither_free(dither); }
    };

    DitherRequest request;
    std::unique_ptr<plk_dither, Deleter> handle;
    ArrayRows source;
    ArrayRows target;
};

// The ranks of an array of them, or none for those of the library.
std::vector<std::uint16_t> ToMask(pybind11::handle value);
// Ranks as a new array that can't be written.
pybind11::object MaskArray(const std::uint16_t* ranks);

void AddDither(pybind11::module_& module);

} // namespace zvk::Pelkraft::Python
