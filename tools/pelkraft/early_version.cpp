#include "tools/pelkraft/early_version.h"

#include "tools/pelkraft/pattern_words.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::string_view versionWord = "VERSION";
constexpr std::string_view delimiters = " \t\n";
constexpr std::size_t bytesBehindPosition = 20;

std::string_view TakePiece(std::string_view& text)
{
    const std::size_t start = std::min(text.find_first_not_of(delimiters), text.size());
    const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
    const std::string_view piece = text.substr(start, end - start);
    text.remove_prefix(end);
    return piece;
}

} // namespace

std::optional<std::int32_t> ReadEarlyVersion(std::string_view text, TextSpan& place)
{
    const std::size_t position = text.find(versionWord);
    if (position == std::string_view::npos)
        return std::nullopt;
    place = {position, versionWord.size()};
    // What the check sees grows with the position of the word.
    std::string_view seen =
        text.substr(position, std::min(text.size() - position, position + bytesBehindPosition));
    TakePiece(seen);
    const std::string_view number = TakePiece(seen);
    if (number.empty())
        return std::nullopt;
    return NumberOf(number);
}

} // namespace zvk::Pelkraft::Client
