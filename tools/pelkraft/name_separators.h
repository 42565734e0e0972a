#pragma once

#include "pattern/tokenizer.h"
#include "tools/pelkraft/findings.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Drops the commas and semicolons with which names begin or end, as in "Black, Cyan", and finds
// each such place. The library takes them for letters of the name, which its author hardly meant.
// They stay where the list would hold a name twice without them.
std::vector<PatternToken> DropNameSeparators(const std::vector<PatternToken>& tokens,
                                             Findings& findings);

// A name as a text writes it, in quotes where it wants them.
std::string NameAsWord(const std::string& name);

} // namespace zvk::Pelkraft::Client
