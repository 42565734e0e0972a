#pragma once

#include "tools/pelkraft/combination_model.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/pattern_outline.h"

namespace zvk::Pelkraft::Client {

// Finds what is wrong or odd about a pattern as a whole, and that no single place of its text
// shows: names without use, steps without a line, draws that are or aren't shared, limits.
void LintPattern(const PatternText& text, const PatternOutline& outline,
                 const CombinationModel& model, Findings& findings);

} // namespace zvk::Pelkraft::Client
