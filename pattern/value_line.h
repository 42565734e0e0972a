#pragma once

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::int32_t stepsOfInColor = 8;
constexpr std::int32_t positionsOfInColor = 16;
constexpr std::int32_t mostWeights = 16;

// One line of a list of values: what one step does. Alternative j has the probability
// weights[j] over weightSum and puts values[j] at the ink position positions[j].
struct ValueLine
{
    std::int32_t step = 0;
    bool hasSuffix = false;
    std::int32_t count = 0;
    std::uint32_t weightSum = 0;
    std::array<std::int32_t, mostWeights> weights{};
    std::array<std::int32_t, mostWeights> positions{};
    std::array<std::int32_t, mostWeights> values{};
};

} // namespace zvk::Pelkraft
