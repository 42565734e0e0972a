#include "tools/pelkraft/pattern_words.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* keywords[] = {
    "DotWeavePattern", "VERSION",       "RANDOM_SEED",    "BEGIN_OUT_INKS", "END_OUT_INKS",
    "BEGIN_IN_COLORS", "END_IN_COLORS", "BEGIN_IN_COLOR", "END_IN_COLOR",   "BEGIN_INKS",
    "END_INKS",        "BEGIN_VALUES",  "END_VALUES"};

// Longer words are no names that a slip of the hand made.
constexpr std::size_t longestCompared = 64;

bool IsWhite(char byte)
{
    return byte == '\t' || byte == '\n' || byte == '\r' || byte == ' ';
}

bool IsDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

// Letters to insert, drop or replace.
std::size_t Distance(std::string_view left, std::string_view right)
{
    std::vector<std::size_t> row(right.size() + 1);
    for (std::size_t i = 0; i < row.size(); ++i)
        row[i] = i;
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t k = 0; k < right.size(); ++k) {
            const std::size_t replaced = diagonal + (left[i] == right[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, row[k] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::vector<PatternWord> CutWords(std::string_view text)
{
    std::vector<PatternWord> words;
    std::size_t at = 0;
    while (at < text.size()) {
        if (IsWhite(text[at])) {
            ++at;
            continue;
        }
        if (text[at] == '#') {
            at = std::min(text.find_first_of("\r\n", at), text.size());
            continue;
        }
        PatternWord& word = words.emplace_back();
        word.place.offset = at;
        for (; at < text.size() && (word.openQuote || !IsWhite(text[at])); ++at) {
            if (text[at] == '"')
                word.openQuote = !word.openQuote;
            else
                word.text += text[at];
        }
        word.place.length = at - word.place.offset;
    }
    return words;
}

std::string UpperCased(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return upper;
}

std::int32_t NumberOf(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size() && (text[at] == ' ' || (text[at] >= '\t' && text[at] <= '\r')))
        ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        ++at;
    const std::int64_t most =
        std::int64_t{std::numeric_limits<std::int32_t>::max()} + (negative ? 1 : 0);
    std::int64_t number = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at)
        number = std::min(number * 10 + (text[at] - '0'), most);
    return static_cast<std::int32_t>(negative ? -number : number);
}

bool IsPlainNumber(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

const char* KeywordInAnyCase(std::string_view word)
{
    const std::string upper = UpperCased(word);
    const auto* const found =
        std::find_if(std::begin(keywords), std::end(keywords),
                     [&](const char* keyword) { return UpperCased(keyword) == upper; });
    return found == std::end(keywords) ? nullptr : *found;
}

bool IsKeyword(std::string_view word)
{
    return std::find(std::begin(keywords), std::end(keywords), word) != std::end(keywords);
}

std::string NearestName(std::string_view word, const std::vector<std::string>& candidates)
{
    const std::string upper = UpperCased(word);
    if (upper.size() < 3 || upper.size() > longestCompared)
        return {};
    std::string nearest;
    std::size_t best = upper.size() < 6 ? 2 : 3;
    for (const std::string& candidate : candidates) {
        if (candidate.size() > longestCompared)
            continue;
        const std::size_t distance = Distance(upper, UpperCased(candidate));
        if (distance < best) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string NearestKeyword(std::string_view word)
{
    return NearestName(word, {std::begin(keywords), std::end(keywords)});
}

} // namespace zvk::Pelkraft::Client
