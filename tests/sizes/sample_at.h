#pragma once

#include "tests/support/naive_conversion.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft::TestSupport {

// One sample of a row of any size that an address reaches.
inline unsigned SampleAt(const NaiveGeometry& geometry, const unsigned char* row,
                         std::int64_t pixel, std::int64_t channel)
{
    const std::int64_t planeBytes = (std::int64_t{geometry.width} * geometry.bits + 7) / 8;
    if (IsNaivePacked(geometry)) {
        const std::int64_t bit = pixel * geometry.bits;
        const unsigned byte = row[static_cast<std::size_t>(channel * planeBytes + bit / 8)];
        const auto below = static_cast<unsigned>(8 - geometry.bits - bit % 8);
        return byte >> below & ((1U << geometry.bits) - 1);
    }
    const std::int64_t bytes = (geometry.bits + 7) / 8;
    const std::int64_t place = geometry.planar ? channel * planeBytes + pixel * bytes
                                               : (pixel * geometry.channels + channel) * bytes;
    const unsigned low = row[static_cast<std::size_t>(place)];
    return bytes == 1 ? low : low + row[static_cast<std::size_t>(place + 1)] * 256U;
}

} // namespace zvk::Pelkraft::TestSupport
