#pragma once

#include "pattern/fraction.h"
#include "pattern/value_line.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::uint32_t MAXS_CHANNEL_RANDOM = 32;
constexpr std::uint32_t MAXS_TOTAL_RANDOM = 1024;
constexpr std::int32_t outInkLanes = 16;

// An alternative or a combination that sets nothing for an ink.
constexpr std::int32_t unsetValue = -1;
constexpr std::uint8_t noInColorOfInk = 0xFF;

// Ink values by step.
using StepRow = std::array<std::int32_t, stepsOfInColor>;

constexpr StepRow unsetRow = {-1, -1, -1, -1, -1, -1, -1, -1};

// What the text says of one step.
struct StepValues
{
    StepValues()
    {
        for (auto& values : table)
            values.fill(unsetValue);
    }

    std::int32_t numRandoms = 0;
    std::array<Fraction, MAXS_CHANNEL_RANDOM> fractions{};
    // Value by alternative and ink position.
    std::array<std::array<std::int32_t, positionsOfInColor>, MAXS_CHANNEL_RANDOM> table;
};

// A choice made for every step of an in-colour: a row for each ink position.
struct ChannelCombination
{
    ChannelCombination() { inkSteps.fill(unsetRow); }

    std::array<StepRow, positionsOfInColor> inkSteps;
    Fraction fraction;
};

struct InColorRecord
{
    std::int32_t numInks = 0;
    // Out-ink index by ink position.
    std::array<std::int32_t, positionsOfInColor> inks{};
    std::array<StepValues, stepsOfInColor> steps;
    // The highest step listed, plus 1.
    std::int32_t numSteps = 0;
    std::int32_t numCombinations = 1;
    std::array<ChannelCombination, MAXS_CHANNEL_RANDOM> combinations;
};

// A choice made for every in-colour: by out-ink, the row that the combination chosen for its
// in-colour holds. Null where no in-colour feeds the ink.
struct PatternCombination
{
    Fraction fraction;
    std::array<StepRow*, outInkLanes> inkSteps{};
};

// What the random sources draw from. It ends ahead of the total of all weights.
struct CombinationDistribution
{
    std::uint32_t count = 0;
    // By combination, the sum of the weights of those before it.
    std::array<std::uint32_t, MAXS_TOTAL_RANDOM> cumulative{};
    // The weights are expressed over it.
    std::uint32_t total = 1;
};

} // namespace zvk::Pelkraft
