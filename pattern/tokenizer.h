#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft {

// A piece of a text, in bytes.
struct TextSpan
{
    std::size_t offset = 0;
    std::size_t length = 0;
};

// Quotes are part of a token's place, and not of its text.
struct PatternToken
{
    std::string text;
    TextSpan place;
    // Nothing closes its last quote, and it runs to the end of the text.
    bool openQuote = false;
};

// Cuts a pattern text at its white space. Double quotes keep white space within a token, and a
// comment runs from its character, where a token could begin, to the end of the line.
std::vector<PatternToken> CutTokens(std::string_view text, char commentCharacter);

// Editors count so: from 1, a character of several bytes once, a tab once.
struct TextPlace
{
    int line = 1;
    int column = 1;
};

// Knows where the lines of a text begin. A carriage return ends a line, and the line feed after it
// belongs to it. The text itself is not kept.
class TextLines
{
public:
    explicit TextLines(std::string_view text);

    TextPlace PlaceOf(std::size_t offset, std::string_view text) const;
    // The line of a place that PlaceOf gave, without its end.
    std::string_view Line(int number, std::string_view text) const;

private:
    std::vector<std::size_t> starts{0};
};

} // namespace zvk::Pelkraft
