#pragma once

#include "tools/pelkraft/pattern_text.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {

// One word of a pattern text. Quotes are not part of its text, but of its place.
struct PatternWord
{
    std::string text;
    TextSpan place;
    // A quote that nothing closes: the word runs to the end of the text.
    bool openQuote = false;
};

// Cuts a text at white space; '#' begins a comment where no word has begun, double quotes keep
// white space and '#' in a word.
std::vector<PatternWord> CutWords(std::string_view text);

// Of ASCII letters; all other bytes stay.
std::string UpperCased(std::string_view text);

// Leading white space, a sign, digits up to the first other byte; 0 without digits. Numbers
// beyond 32 bits saturate.
std::int32_t NumberOf(std::string_view text);

// Whether the text is digits alone.
bool IsPlainNumber(std::string_view text);

// The word of the pattern language that this word is but for the case of its letters, or null.
const char* KeywordInAnyCase(std::string_view word);
bool IsKeyword(std::string_view word);

// Out of candidates the one that a slip of the hand or two turns into this word, in any case;
// empty if there is none.
std::string NearestName(std::string_view word, const std::vector<std::string>& candidates);
std::string NearestKeyword(std::string_view word);

} // namespace zvk::Pelkraft::Client
