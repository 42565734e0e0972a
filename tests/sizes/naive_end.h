#pragma once

#include "tests/support/naive_conversion.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// The outcome of a conversion between two geometries of any numbers, worked out in numbers that
// don't wrap.
struct NaiveEnd
{
    // Empty if nothing is refused.
    std::string refusal;
    // Pixels that are set where nothing is refused.
    std::int64_t pixels = 0;
    // The larger one of both pixels counts.
    std::int64_t pixelBytes = 0;
};

// The map of the operation is not looked at, but for whether it is given.
NaiveEnd EndOfConversion(const NaiveGeometry& from, const NaiveGeometry& to,
                         const NaiveOperation& operation, bool mapIsNull);

// Bytes of a row of supported depth; a double, which no product of ours overflows.
double ExactRowBytes(const NaiveGeometry& geometry);

} // namespace zvk::Pelkraft::TestSupport
