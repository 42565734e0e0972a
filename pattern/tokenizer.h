#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft {

// Cuts a pattern text at its white space. Double quotes keep white space within a token, and a
// comment runs from its character, where a token could begin, to the end of the line.
std::vector<std::string> CutTokens(std::string_view text, char commentCharacter);

} // namespace zvk::Pelkraft
