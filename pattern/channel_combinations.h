#pragma once

#include "pattern/pattern_model.h"

namespace zvk::Pelkraft {

// Multiplies out the alternatives of one in-colour. Throws
//   "step without value line in pattern"
//   "numCombinations > MAXS_CHANNEL_RANDOM"
//   "fraction out of range in pattern"
void BuildChannelCombinations(InColorRecord& record);

} // namespace zvk::Pelkraft
