#pragma once

#include "tests/support/naive_conversion.h"

#include <limits>

namespace zvk::Pelkraft::TestSupport {

constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

// Small ones, and those whose products meet 2^31, 2^32 and 2^63.
constexpr int sizeNumbers[] = {0,       1,       -1,      17,      1 << 15,     1 << 16,
                               1 << 28, 1 << 29, 1 << 30, largest, largest - 7, smallest};

// All combinations of these with some depths, in both layouts.
template <typename Depths>
std::vector<NaiveGeometry> AllGeometries(const Depths& depths)
{
    std::vector<NaiveGeometry> geometries;
    for (const int width : sizeNumbers)
        for (const int channels : sizeNumbers)
            for (const int bits : depths)
                for (const bool planar : {false, true})
                    geometries.push_back({width, channels, bits, planar});
    return geometries;
}

} // namespace zvk::Pelkraft::TestSupport
