#include "pattern/pattern_words.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft {
namespace {

// std::isspace would depend on the host's locale.
bool IsSpace(char byte)
{
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

bool IsDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

} // namespace

std::string UpperCase(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(), [](char byte) {
        return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
    });
    return name;
}

std::int32_t ReadNumber(std::string_view text)
{
    std::size_t at = 0;
    while (at < text.size() && IsSpace(text[at]))
        ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        ++at;

    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    const std::int64_t limit = negative ? highest + 1 : highest;
    std::int64_t number = 0;
    for (; at < text.size() && IsDigit(text[at]); ++at) {
        number = number * 10 + (text[at] - '0');
        if (number > limit)
            number = limit;
    }
    return static_cast<std::int32_t>(negative ? -number : number);
}

} // namespace zvk::Pelkraft
