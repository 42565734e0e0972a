#include "tools/pelkraft/near_names.h"

#include "pattern/pattern_words.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* keywords[] = {
    "DotWeavePattern", "VERSION",       "RANDOM_SEED",    "BEGIN_OUT_INKS", "END_OUT_INKS",
    "BEGIN_IN_COLORS", "END_IN_COLORS", "BEGIN_IN_COLOR", "END_IN_COLOR",   "BEGIN_INKS",
    "END_INKS",        "BEGIN_VALUES",  "END_VALUES"};

// Longer words are no names that a slip of the hand made.
constexpr std::size_t longestCompared = 64;

// Letters to insert, drop or replace, and neighbours to swap.
std::size_t Distance(std::string_view left, std::string_view right)
{
    std::vector<std::size_t> before(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    for (std::size_t k = 0; k < row.size(); ++k)
        row[k] = k;
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::vector<std::size_t> next(right.size() + 1, i + 1);
        for (std::size_t k = 0; k < right.size(); ++k) {
            const std::size_t replaced = row[k] + (left[i] == right[k] ? 0 : 1);
            next[k + 1] = std::min({replaced, next[k] + 1, row[k + 1] + 1});
            const bool swapped =
                i > 0 && k > 0 && left[i] == right[k - 1] && left[i - 1] == right[k];
            if (swapped)
                next[k + 1] = std::min(next[k + 1], before[k - 1] + 1);
        }
        before = std::exchange(row, std::move(next));
    }
    return row.back();
}

} // namespace

const char* KeywordInAnyCase(std::string_view word)
{
    const std::string upper = UpperCase(std::string(word));
    const auto* const found =
        std::find_if(std::begin(keywords), std::end(keywords),
                     [&](const char* keyword) { return UpperCase(keyword) == upper; });
    return found == std::end(keywords) ? nullptr : *found;
}

bool IsKeyword(std::string_view word)
{
    return std::find(std::begin(keywords), std::end(keywords), word) != std::end(keywords);
}

std::vector<std::string> NearestNames(const std::string& word,
                                      const std::vector<std::string>& candidates)
{
    const std::string upper = UpperCase(word);
    if (upper.size() < 3 || upper.size() > longestCompared)
        return {};
    std::vector<std::string> nearest;
    std::size_t best = upper.size() < 6 ? 1 : 2;
    for (const std::string& candidate : candidates) {
        const bool isFarLonger = candidate.size() > upper.size() + best;
        const bool isFarShorter = upper.size() > candidate.size() + best;
        if (candidate.size() > longestCompared || isFarLonger || isFarShorter)
            continue;
        const std::size_t distance = Distance(upper, UpperCase(candidate));
        if (distance > best)
            continue;
        if (distance < best)
            nearest.clear();
        best = distance;
        nearest.push_back(candidate);
    }
    return nearest;
}

std::string NearestName(const std::string& word, const std::vector<std::string>& candidates)
{
    const std::vector<std::string> nearest = NearestNames(word, candidates);
    return nearest.empty() ? std::string() : nearest.front();
}

std::vector<std::string> NearestKeywords(const std::string& word)
{
    return NearestNames(word, {std::begin(keywords), std::end(keywords)});
}

std::string NearestKeyword(const std::string& word)
{
    const std::vector<std::string> nearest = NearestKeywords(word);
    return nearest.empty() ? std::string() : nearest.front();
}

std::string StrayHint(const std::string& word)
{
    if (IsKeyword(word))
        return word.starts_with("END_") ? "open what it closes with BEGIN_" + word.substr(4)
                                        : "put it between BEGIN_IN_COLOR and END_IN_COLOR";
    const std::string nearest = NearestKeyword(word);
    return nearest.empty() ? "begin a comment with #, and a list with its BEGIN_ keyword"
                           : "did you mean " + nearest + "?";
}

} // namespace zvk::Pelkraft::Client
