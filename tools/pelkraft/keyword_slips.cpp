#include "tools/pelkraft/keyword_slips.h"

#include "tools/pelkraft/near_names.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

// A file that is no pattern holds millions of words, and no author makes so many slips.
constexpr std::size_t mostComparisons = 10000;

bool IsLetter(char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

} // namespace

bool KeywordSlips::IsSlipOf(const PatternToken& token, std::string_view keyword)
{
    const std::vector<std::string>& meant = Near(token);
    return std::find(meant.begin(), meant.end(), keyword) != meant.end();
}

const std::vector<std::string>& KeywordSlips::Near(const PatternToken& token)
{
    if (compared == &token)
        return near;
    compared = &token;
    near.clear();
    const bool isWord = !token.text.empty() && IsLetter(token.text.front());
    if (isWord && KeywordInAnyCase(token.text) == nullptr && comparisons < mostComparisons) {
        ++comparisons;
        near = NearestKeywords(token.text);
    }
    return near;
}

} // namespace zvk::Pelkraft::Client
