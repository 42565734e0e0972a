#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// The generator of the first generation. Old pictures depend on its sequence, and its state
// belongs to the load in progress: the platform's own generator is neither called nor disturbed.
class LinearRandom
{
public:
    explicit LinearRandom(std::uint32_t seed) : state(seed) {}

    // 0 to 32767.
    std::uint32_t Next()
    {
        state = state * 214013U + 2531011U;
        return state >> 16 & 0x7FFFU;
    }

private:
    std::uint32_t state;
};

// What Next never goes beyond, plus 1.
constexpr std::uint32_t linearRandomValues = 32768;

} // namespace zvk::Pelkraft
