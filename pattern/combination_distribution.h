#pragma once

#include "pattern/pattern_combinations.h"
#include "pattern/pattern_model.h"

#include <cstdint>

namespace zvk::Pelkraft {

// Brings the fractions of the first count combinations to one denominator and adds them up; all
// of it wraps in 32 bits.
void BuildDistribution(const PatternCombinations& combinations, std::uint32_t count,
                       CombinationDistribution& distribution);

} // namespace zvk::Pelkraft
