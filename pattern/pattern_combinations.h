#pragma once

#include "pattern/in_color_records.h"
#include "pattern/pattern_model.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

using PatternCombinations = std::array<PatternCombination, MAXS_TOTAL_RANDOM>;

// Multiplies out the combinations of the first inColorCount in-colours, whose own are built, and
// gives their number. The rows stay in the records. Throws
//   "numCombinations > MAXS_TOTAL_RANDOM"
//   "fraction out of range in pattern"
std::uint32_t BuildPatternCombinations(const InColorRecords<InColorRecord>& inColors,
                                       std::int32_t inColorCount,
                                       PatternCombinations& combinations);

} // namespace zvk::Pelkraft
