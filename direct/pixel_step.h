#pragma once

#include "direct/direct_plan.h"

namespace zvk::Pelkraft {

// Makes ready the step of a plan whose passes have been chosen, if there is one among them.
void FillSteps(DirectPlan& plan);

} // namespace zvk::Pelkraft
