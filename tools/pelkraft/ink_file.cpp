#include "tools/pelkraft/ink_file.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::string_view blanks = " \t\r";

// Cut at blanks outside of double quotes. Nothing where a quote is open at the end.
std::optional<std::vector<std::string>> WordsOf(std::string_view line)
{
    std::vector<std::string> words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty())
            return words;
        const bool quoted = line.front() == '"';
        if (quoted)
            line.remove_prefix(1);
        const std::size_t end = quoted ? line.find('"') : line.find_first_of(blanks);
        if (quoted && end == std::string_view::npos)
            return std::nullopt;
        words.emplace_back(line.substr(0, end));
        line.remove_prefix(end == std::string_view::npos ? line.size() : end + (quoted ? 1 : 0));
    }
}

// Reads a number from 0 to 1 in decimals, with a point in every language.
std::optional<double> ReadShare(const std::string& word)
{
    constexpr std::size_t longest = 11;
    const bool whole = word.size() == 1;
    if (word.empty() || word.size() > longest || (word[0] != '0' && word[0] != '1') ||
        (!whole && (word[1] != '.' || word.size() == 2)) ||
        (!whole && word.find_first_not_of("0123456789", 2) != std::string::npos))
        return std::nullopt;
    std::int64_t parts = word[0] - '0';
    std::int64_t unit = 1;
    for (std::size_t i = 2; i < word.size(); ++i) {
        parts = parts * 10 + (word[i] - '0');
        unit *= 10;
    }
    if (parts > unit)
        return std::nullopt;
    return static_cast<double>(parts) / static_cast<double>(unit);
}

std::string Found(const std::string& word, const char* expected)
{
    return "found \"" + word + "\", expected " + expected;
}

// The words ahead of a colour, where there is one, are a name that wants quotes.
std::string UnquotedName(const std::vector<std::string>& words)
{
    const auto colour = std::find_if(words.begin(), words.end(), [](const std::string& word) {
        return ReadColour(word).has_value();
    });
    if (colour == words.end() || colour - words.begin() < 2)
        return {};
    std::string name;
    for (auto word = words.begin(); word != colour; ++word)
        name += (name.empty() ? "" : " ") + *word;
    return "found " + std::to_string(colour - words.begin()) +
           " words ahead of the colour, expected quotes around a name of several: \"" + name + '"';
}

// Answers what is wrong, or nothing.
std::string AddInk(const std::vector<std::string>& words, InkTable& inks)
{
    if (const std::string fault = UnquotedName(words); !fault.empty())
        return fault;
    if (words.size() < 3 || words.size() > 4)
        return "found " + std::to_string(words.size()) +
               " words, expected a name, a colour, an opacity and, if it is not 1, a strength";
    const std::string name = PlainInkName(words[0]);
    if (name.empty())
        return Found(words[0], "the name of an ink");
    const auto colour = ReadColour(words[1]);
    if (!colour)
        return Found(words[1], "a colour as #RRGGBB, such as #009EE0");
    const auto opacity = ReadShare(words[2]);
    if (!opacity)
        return Found(words[2], "an opacity from 0 to 1, such as 0.9");
    const auto strength = words.size() == 4 ? ReadShare(words[3]) : std::optional<double>(1);
    if (!strength)
        return Found(words[3], "a strength from 0 to 1, such as 0.4");
    if (!inks.emplace(name, InkLook{*colour, *opacity, *strength}).second)
        return "found \"" + words[0] + "\" a second time, expected one line for each ink";
    return {};
}

} // namespace

std::string AddInks(std::string_view text, InkTable& inks)
{
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
        if (line.empty() || line.front() == '#')
            continue;
        const auto words = WordsOf(line);
        const std::string fault =
            words ? AddInk(*words, inks) : "found a quote that nothing closes, expected another";
        if (!fault.empty())
            return "line " + std::to_string(number) + ": " + fault;
    }
    return {};
}

} // namespace zvk::Pelkraft::Client
