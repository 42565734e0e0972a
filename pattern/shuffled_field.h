#pragma once

#include "pattern/pattern_combinations.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// The size of a field of the second generation.
struct FieldMeasure
{
    // The largest denominator of a combination other than the first.
    std::uint32_t denominator;
    // How often the field holds that many entries.
    std::uint32_t multiplier;

    std::uint32_t Size() const { return denominator * multiplier; }
};

// lowestDenominator is the measure's without a second combination; a field of denominator 0
// can't be had.
std::uint32_t FindFieldDenominator(const PatternCombinations& combinations, std::uint32_t count,
                                   std::uint32_t lowestDenominator);
FieldMeasure MeasureField(std::uint32_t denominator);

// Holds each combination as often as its proportion says, the first one for all that is left
// over, and all of it shuffled. Throws std::bad_alloc, for a field that no machine is meant to
// hold as well.
std::vector<std::uint32_t> BuildShuffledField(std::uint32_t seed, const FieldMeasure& measure,
                                              const PatternCombinations& combinations,
                                              std::uint32_t count);

} // namespace zvk::Pelkraft
