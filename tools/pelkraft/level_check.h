#pragma once

#include "tools/pelkraft/row_plan.h"

#include <vector>

namespace zvk::Pelkraft::Client {

// True if a sample of the row is beyond the highest level of a depth of levelBits. The channels
// that map names are looked at, or all if it is empty.
bool ExceedsLevels(const unsigned char* row, const RowShape& shape, int levelBits,
                   const std::vector<int>& map);

} // namespace zvk::Pelkraft::Client
