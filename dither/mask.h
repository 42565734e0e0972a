#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// A mask is a square of ranks, row by row, which repeats in both directions. The built-in one has
// each rank from 0 to 65535 once.
inline constexpr std::size_t maskSide = 256;
inline constexpr std::size_t maskPlaces = maskSide * maskSide;

// Null where the library was built without it.
const std::uint16_t* BuiltInMask();

} // namespace zvk::Pelkraft
