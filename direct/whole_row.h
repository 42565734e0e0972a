#pragma once

#include "direct/direct_plan.h"

namespace zvk::Pelkraft {

// Runs the only pass of a plan that has no tile.
void RunRow(const DirectPlan& plan, const DirectRows& rows);

} // namespace zvk::Pelkraft
