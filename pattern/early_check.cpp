#include "pattern/early_check.h"

#include "pattern/pattern_words.h"

#include <algorithm>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr const wchar_t* noText = L"Internal Message: no input dotweave pattern";
constexpr const wchar_t* textTooLong = L"Internal Message: to long dotweave pattern";
constexpr const wchar_t* noVersion = L"Internal Message: no version in dotweave pattern";

constexpr std::string_view versionWord = "VERSION";
constexpr std::size_t bytesBeyondPosition = 20;

} // namespace

std::optional<std::int32_t> FindEarlyVersion(std::string_view text, SplitFunction split,
                                             TextSpan& place)
{
    const std::size_t position = text.find(versionWord);
    if (position == std::string_view::npos)
        return std::nullopt;
    place = {position, versionWord.size()};

    // The piece grows with its position: a number far after a late word is still seen.
    const std::size_t pieceBytes = std::min(text.size() - position, position + bytesBeyondPosition);
    const std::string piece(text.substr(position, pieceBytes));
    const auto pieces = split(piece, {" ", "\t", "\n"}, false);
    if (pieces.size() < 2)
        return std::nullopt;
    return ReadNumber(pieces[1]);
}

std::int32_t CheckPatternText(const char* text, SplitFunction split)
{
    if (text == nullptr)
        throw noText;
    const std::size_t length = std::strlen(text);
    // This one length alone: longer texts pass, up to the next with the same low 32 bits.
    if (static_cast<std::uint32_t>(length) == 0x7FFFFFFFU)
        throw textTooLong;

    TextSpan place;
    const auto version = FindEarlyVersion({text, length}, split, place);
    if (!version)
        throw noVersion;
    return *version;
}

} // namespace zvk::Pelkraft
