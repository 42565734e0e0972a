#include "pattern/early_check.h"

#include "pattern/pattern_words.h"
#include "zvk/split.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace zvk::Pelkraft {
namespace {

constexpr const wchar_t* noText = L"Internal Message: no input dotweave pattern";
constexpr const wchar_t* textTooLong = L"Internal Message: to long dotweave pattern";
constexpr const wchar_t* noVersion = L"Internal Message: no version in dotweave pattern";

constexpr const char* versionWord = "VERSION";
constexpr std::size_t versionWordBytes = 7;
constexpr std::size_t bytesBehindPosition = 20;

} // namespace

std::int32_t CheckPatternText(const char* text)
{
    if (text == nullptr)
        throw noText;
    const std::size_t length = std::strlen(text);
    // This one length alone: longer texts pass, up to the next with the same low 32 bits.
    if (static_cast<std::uint32_t>(length) == 0x7FFFFFFFU)
        throw textTooLong;

    const std::string_view whole(text, length);
    if (whole.size() < versionWordBytes)
        throw noVersion;
    const std::size_t position = whole.find(versionWord);
    if (position == std::string_view::npos)
        throw noVersion;

    // The piece grows with its position: a number far behind a late word is still seen.
    const std::size_t pieceBytes =
        std::min(whole.size() - position, position + bytesBehindPosition);
    const std::string piece(whole.substr(position, pieceBytes));
    const auto pieces = zvk::split(piece, {" ", "\t", "\n"}, false);
    if (pieces.size() < 2)
        throw noVersion;
    return ReadNumber(pieces[1]);
}

} // namespace zvk::Pelkraft
