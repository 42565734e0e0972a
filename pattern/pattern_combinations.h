#pragma once

#include "pattern/pattern_model.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

using PatternCombinations = std::array<PatternCombination, MAXS_TOTAL_RANDOM>;

// The result is the other number where one is 0.
std::uint32_t GreatestCommonDivisor(std::uint32_t a, std::uint32_t b);

// Wraps in 32 bits; both arguments at least 1.
std::uint32_t LeastCommonMultiple(std::uint32_t a, std::uint32_t b);

// Products wrap in 32 bits before they are reduced. A product of denominators that wraps to 0
// throws "fraction out of range in pattern".
Fraction Multiply(const Fraction& a, const Fraction& b);

// The distributions among the steps of an in-colour, each named by the first step that has it,
// and by step which of them it has. Steps that share one share the draw.
struct StepDistributions
{
    std::size_t count = 0;
    std::array<const StepValues*, stepsOfInColor> distinct{};
    std::array<std::size_t, stepsOfInColor> ofStep{};
};

StepDistributions FindDistributions(const InColorRecord& record);

// 0 where a step has no line. 8 distributions of 16 alternatives fit in 64 bits.
std::uint64_t CountCombinations(const StepDistributions& distributions);

// Multiplies out the alternatives of one in-colour. Throws
//   "step without value line in pattern"
//   "numCombinations > MAXS_CHANNEL_RANDOM"
//   "fraction out of range in pattern"
void BuildChannelCombinations(InColorRecord& record);

// Multiplies out the combinations of the first inColorCount in-colours, whose own are built, and
// gives their number. The rows stay in the records. Throws
//   "numCombinations > MAXS_TOTAL_RANDOM"
//   "fraction out of range in pattern"
std::uint32_t BuildPatternCombinations(const InColorRecords<InColorRecord>& inColors,
                                       std::int32_t inColorCount,
                                       PatternCombinations& combinations);

// Brings the fractions of the first count combinations to one denominator and adds them up; all
// of it wraps in 32 bits.
void BuildDistribution(const PatternCombinations& combinations, std::uint32_t count,
                       CombinationDistribution& distribution);

} // namespace zvk::Pelkraft
