#pragma once

#include "pattern/tokenizer.h"
#include "tools/pelkraft/findings.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Parts the keywords of a text from words that no blank and no line end parts from them, as in
// BEGIN_INKSCyan, and finds each such place. Names that the library itself knows stay whole.
std::vector<PatternToken> PartGluedKeywords(const std::string& text,
                                            const std::vector<PatternToken>& tokens,
                                            Findings& findings);

// False for a keyword that was parted from the word after it.
bool StandsAlone(const std::string& text, const PatternToken& token);

} // namespace zvk::Pelkraft::Client
