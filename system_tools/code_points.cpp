#include "system_tools/code_points.h"

namespace zvk::Diagnostics {
namespace {

constexpr char32_t lastCodePoint = 0x10FFFF;
constexpr char32_t firstPaired = 0x10000;
constexpr char32_t highSurrogate = 0xD800;
constexpr char32_t lowSurrogate = 0xDC00;
constexpr char32_t behindSurrogates = 0xE000;
constexpr char32_t replacement = 0xFFFD;

constexpr bool IsCodePoint(char32_t value)
{
    return value < highSurrogate || (value >= behindSurrogates && value <= lastCodePoint);
}

// Bytes that follow a lead byte; 0 for ASCII and for what leads nothing.
constexpr int CountFollowers(unsigned char lead)
{
    if (lead < 0xC0 || lead >= 0xF8)
        return 0;
    if (lead < 0xE0)
        return 1;
    return lead < 0xF0 ? 2 : 3;
}

} // namespace

char32_t TakeCodePoint(const char*& text)
{
    const auto lead = static_cast<unsigned char>(*text++);
    const int followers = CountFollowers(lead);
    if (followers == 0)
        return lead;

    // The text's closing zero is no follower, so this can't run past it.
    char32_t value = lead & (0x3Fu >> followers);
    for (int i = 0; i < followers; ++i) {
        const auto follower = static_cast<unsigned char>(text[i]);
        if ((follower & 0xC0) != 0x80)
            return lead;
        value = value << 6 | (follower & 0x3Fu);
    }
    // A value that a shorter sequence could hold must be written so.
    constexpr char32_t smallest[] = {0x80, 0x800, firstPaired};
    if (value < smallest[followers - 1] || !IsCodePoint(value))
        return lead;
    text += followers;
    return value;
}

char32_t TakeCodePoint(const wchar_t*& text)
{
    const auto first = static_cast<char32_t>(*text++);
    if (first >= highSurrogate && first < lowSurrogate) {
        const auto second = static_cast<char32_t>(*text);
        if (second >= lowSurrogate && second < behindSurrogates) {
            ++text;
            return firstPaired + ((first - highSurrogate) << 10) + (second - lowSurrogate);
        }
    }
    return IsCodePoint(first) ? first : replacement;
}

void PutCodePoint(LineBuffer<char>& line, char32_t codePoint)
{
    const auto put = [&line](char32_t byte) { line.Append(static_cast<char>(byte)); };
    const auto putFollower = [&](int shift) { put(0x80 | (codePoint >> shift & 0x3F)); };
    if (codePoint < 0x80) {
        put(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        put(0xC0 | codePoint >> 6);
    } else if (codePoint < firstPaired) {
        put(0xE0 | codePoint >> 12);
        putFollower(6);
    } else {
        put(0xF0 | codePoint >> 18);
        putFollower(12);
        putFollower(6);
    }
    putFollower(0);
}

void PutCodePoint(LineBuffer<wchar_t>& line, char32_t codePoint)
{
    if (sizeof(wchar_t) == 2 && codePoint >= firstPaired) {
        const char32_t rest = codePoint - firstPaired;
        line.Append(static_cast<wchar_t>(highSurrogate + (rest >> 10)));
        line.Append(static_cast<wchar_t>(lowSurrogate + (rest & 0x3FF)));
        return;
    }
    line.Append(static_cast<wchar_t>(codePoint));
}

} // namespace zvk::Diagnostics
