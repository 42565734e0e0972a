#pragma once

#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/pattern_outline.h"
#include "tools/pelkraft/pattern_text.h"

namespace zvk::Pelkraft::Client {

// Reads a text by the rules of the library, to the end whatever it says: where the library throws
// a text and stops, this goes on as well as it can.
PatternOutline ReadOutline(const PatternText& text);

// Reads a text as its author seems to have meant it: keywords in the wrong case count, lists that
// nothing closes end at the next section, lines with too few or too many entries are left out.
// What it had to guess, and all else that is wrong or odd at one place in the text, is found.
PatternOutline ReadIntention(const PatternText& text, Findings& findings);

} // namespace zvk::Pelkraft::Client
