#pragma once

#include "tools/pelkraft/combination_model.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/pattern_outline.h"

namespace zvk::Pelkraft::Client {

// Finds what is wrong or odd about a pattern as a whole, and that no single place of its text
// shows: names without use and steps without a line, then what draw_lints.h names.
void LintPattern(const PatternText& text, const PatternOutline& outline,
                 const CombinationModel& model, Findings& findings);

} // namespace zvk::Pelkraft::Client
