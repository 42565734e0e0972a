#pragma once

#include <cstddef>

namespace zvk::Pelkraft::Client {

// Levels of a depth of 1 or 2 bits are 0 to MaxLevel; tones are 0 to 255.
constexpr int MaxLevel(int bits)
{
    return (1 << bits) - 1;
}

// Each tone to the nearest of the levels, which lie evenly over 0 to 255. In place.
void QuantizeTones(unsigned char* samples, std::size_t count, int bits);

// Each level to its tone: 0 stays 0, the highest becomes 255. In place.
void StretchLevels(unsigned char* samples, std::size_t count, int bits);

} // namespace zvk::Pelkraft::Client
