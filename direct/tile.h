#pragma once

#include "direct/direct_plan.h"

namespace zvk::Pelkraft {

// Chooses how many pixels and channels go through the tile at a time, so that what stands between
// two passes stays in the first-level cache.
void SizeTile(DirectPlan& plan);

// Runs a plan that has a tile.
void RunTiles(const DirectPlan& plan, const DirectRows& rows);

} // namespace zvk::Pelkraft
