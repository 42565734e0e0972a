#pragma once

#include "pattern/tokenizer.h"
#include "tools/pelkraft/findings.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Joins the weights of ratios that are written with blanks at their colons, as in 30 : 70, and
// finds each such ratio. The library takes its pieces for other words of the line.
std::vector<PatternToken> JoinRatios(const std::string& text,
                                     const std::vector<PatternToken>& tokens, Findings& findings);

} // namespace zvk::Pelkraft::Client
