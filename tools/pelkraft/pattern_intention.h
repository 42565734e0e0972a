#pragma once

#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/pattern_outline.h"
#include "tools/pelkraft/pattern_text.h"

namespace zvk::Pelkraft::Client {

// Reads a text as its author seems to have meant it: keywords in the wrong case count, names are
// taken for those that they nearly are, lists that nothing closes end at the next section, and an
// entry too many or too few concerns its own line. Each guess, and all else that is wrong or odd at
// one place in the text, is found.
PatternOutline ReadIntention(const PatternText& text, Findings& findings);

} // namespace zvk::Pelkraft::Client
