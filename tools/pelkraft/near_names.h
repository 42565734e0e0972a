#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

// The word of the pattern language that this word is but for the case of its letters, or null.
const char* KeywordInAnyCase(std::string_view word);
bool IsKeyword(std::string_view word);

// Out of candidates the one that a slip of the hand or two turns into this word, in any case;
// empty if there is none.
std::string NearestName(const std::string& word, const std::vector<std::string>& candidates);
std::string NearestKeyword(const std::string& word);

} // namespace zvk::Pelkraft::Client
