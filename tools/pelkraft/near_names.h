#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

// The word of the pattern language that this word is but for the case of its letters, or null.
const char* KeywordInAnyCase(std::string_view word);
bool IsKeyword(std::string_view word);

// Out of candidates those that the fewest slips of the hand, two at most, turn into this word, in
// any case: a letter too many, too few or wrong, or two swapped. Then the first of them; empty if
// there is none.
std::vector<std::string> NearestNames(const std::string& word,
                                      const std::vector<std::string>& candidates);
std::string NearestName(const std::string& word, const std::vector<std::string>& candidates);
std::string NearestKeyword(const std::string& word);
std::vector<std::string> NearestKeywords(const std::string& word);

// Says what to do about a word outside of all sections of a pattern.
std::string StrayHint(const std::string& word);

} // namespace zvk::Pelkraft::Client
