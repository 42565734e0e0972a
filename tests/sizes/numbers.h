#pragma once

#include <cstdint>
#include <limits>

namespace zvk::Pelkraft::TestSupport {

constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

// Small ones, and those whose products meet 2^31, 2^32 and 2^63.
constexpr int sizeNumbers[] = {0,       1,       -1,      17,      1 << 15,     1 << 16,
                               1 << 28, 1 << 29, 1 << 30, largest, largest - 7, smallest};

} // namespace zvk::Pelkraft::TestSupport
