#pragma once

#include "tools/pelkraft/combination_model.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/pattern_outline.h"

namespace zvk::Pelkraft::Client {

// Finds what is wrong or odd about the weights of a pattern: which steps are drawn together, how
// many combinations they make, and which proportions its random source can't keep.
void LintDraws(const PatternOutline& outline, const CombinationModel& model, Findings& findings);

} // namespace zvk::Pelkraft::Client
