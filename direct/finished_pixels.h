#pragma once

#include "direct/pass_run.h"

namespace zvk::Pelkraft {

// Does what is left to do to pixels after the last pass: the plan's patch, on so many neighbouring
// channels or on interleaved pixels.
void PatchPixels(const DirectPlan& plan, const PassTarget& pixels, std::size_t channels);

// Patches pixels that stand in a tile, then stores them in the row.
void StorePixels(const DirectPlan& plan, const PassTarget& tile, const PassTarget& row,
                 std::size_t channels);

} // namespace zvk::Pelkraft
