#include "tools/pelkraft/ink_colours.h"

#include "pattern/pattern_words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <numeric>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double lightStrength = 0.4;
// A light ink takes as much of the light as 0.4 of a layer of the full one, so that tones that go
// from one to the other stay even.
constexpr ScreenColour lightCyan = {203, 223, 243};
constexpr ScreenColour lightMagenta = {244, 203, 215};
constexpr ScreenColour lightYellow = {255, 248, 203};
constexpr ScreenColour lightBlack = {204, 204, 204};
// White and metals hide what lies below them, if not all of it.
constexpr double whiteOpacity = 0.9;
constexpr double metalOpacity = 0.8;

struct UsualInk
{
    const char* name;
    ScreenColour colour;
    double strength = 1;
    double opacity = 0;
};

// Names in capitals without blanks; the abbreviations that charts use.
constexpr UsualInk usualInks[] = {{"CYAN", {0, 158, 224}},
                                  {"C", {0, 158, 224}},
                                  {"MAGENTA", {226, 0, 122}},
                                  {"M", {226, 0, 122}},
                                  {"YELLOW", {255, 237, 0}},
                                  {"Y", {255, 237, 0}},
                                  {"BLACK", {26, 23, 27}},
                                  {"K", {26, 23, 27}},
                                  {"LIGHTCYAN", lightCyan, lightStrength},
                                  {"LC", lightCyan, lightStrength},
                                  {"LIGHTMAGENTA", lightMagenta, lightStrength},
                                  {"LM", lightMagenta, lightStrength},
                                  {"LIGHTYELLOW", lightYellow, lightStrength},
                                  {"LY", lightYellow, lightStrength},
                                  {"LIGHTBLACK", lightBlack, lightStrength},
                                  {"LK", lightBlack, lightStrength},
                                  {"GRAY", lightBlack, lightStrength},
                                  {"GREY", lightBlack, lightStrength},
                                  {"LIGHTGRAY", lightBlack, lightStrength},
                                  {"LIGHTGREY", lightBlack, lightStrength},
                                  {"LLK", lightBlack, lightStrength},
                                  {"PHOTOBLACK", {26, 23, 27}},
                                  {"MATTEBLACK", {40, 38, 40}},
                                  {"RED", {227, 6, 19}},
                                  {"R", {227, 6, 19}},
                                  {"ORANGE", {243, 112, 33}},
                                  {"O", {243, 112, 33}},
                                  {"GREEN", {0, 150, 64}},
                                  {"G", {0, 150, 64}},
                                  {"BLUE", {0, 75, 155}},
                                  {"B", {0, 75, 155}},
                                  {"VIOLET", {100, 53, 142}},
                                  {"V", {100, 53, 142}},
                                  {"WHITE", {255, 255, 255}, 1, whiteOpacity},
                                  {"W", {255, 255, 255}, 1, whiteOpacity},
                                  {"CLEAR", {255, 255, 255}},
                                  {"PRIMER", {255, 255, 255}},
                                  {"VARNISH", {255, 255, 255}},
                                  {"GLOSS", {255, 255, 255}},
                                  {"GOLD", {190, 155, 75}, 1, metalOpacity},
                                  {"SILVER", {165, 168, 172}, 1, metalOpacity}};

// Null for a name that is none of them.
const UsualInk* FindUsual(const std::string& plainName)
{
    const auto* const found =
        std::find_if(std::begin(usualInks), std::end(usualInks),
                     [&](const UsualInk& ink) { return plainName == ink.name; });
    return found != std::end(usualInks) ? found : nullptr;
}

// The same on every machine, which std::hash is not.
std::uint32_t HashOf(const std::string& name)
{
    return std::accumulate(name.begin(), name.end(), 2166136261U,
                           [](std::uint32_t hash, char letter) {
                               return (hash ^ static_cast<unsigned char>(letter)) * 16777619U;
                           });
}

// A middle tone of some hue, neither pale nor dark.
ScreenColour ColourOfHash(std::uint32_t hash)
{
    const double hue = (hash % 360U) / 60.0;
    ScreenColour colour = {};
    for (std::size_t i = 0; i < colour.size(); ++i) {
        const double place = std::fmod(hue + 5.0 - 2.0 * static_cast<double>(i), 6.0);
        const double dip = std::clamp(std::min(place, 4.0 - place), 0.0, 1.0);
        colour[i] = static_cast<std::uint8_t>(std::lround(205 - 160 * dip));
    }
    return colour;
}

} // namespace

std::string PlainInkName(const std::string& name)
{
    std::string plain;
    for (const char letter : UpperCase(name)) {
        if (letter != ' ' && letter != '-' && letter != '_')
            plain += letter;
    }
    return plain;
}

bool IsKnownInk(const std::string& name, const InkTable& given)
{
    const std::string plain = PlainInkName(name);
    return given.count(plain) != 0 || FindUsual(plain) != nullptr;
}

InkLook LookOfInk(const std::string& name, const InkTable& given)
{
    const std::string plain = PlainInkName(name);
    const auto found = given.find(plain);
    if (found != given.end())
        return found->second;
    if (const UsualInk* const usual = FindUsual(plain); usual != nullptr)
        return {usual->colour, usual->opacity, usual->strength};
    return {ColourOfHash(HashOf(plain)), 0, 1};
}

ScreenColour ColourOfInk(const std::string& name, const InkTable& given)
{
    return LookOfInk(name, given).colour;
}

double StrengthOfInk(const std::string& name)
{
    const UsualInk* const usual = FindUsual(PlainInkName(name));
    return usual != nullptr ? usual->strength : 1;
}

std::optional<ScreenColour> ReadColour(const std::string& words)
{
    std::uint32_t number = 0;
    const char* const end = words.data() + words.size();
    if (words.size() != 7 || words.front() != '#')
        return std::nullopt;
    const auto read = std::from_chars(words.data() + 1, end, number, 16);
    if (read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return ScreenColour{static_cast<std::uint8_t>(number >> 16),
                        static_cast<std::uint8_t>(number >> 8 & 0xFFU),
                        static_cast<std::uint8_t>(number & 0xFFU)};
}

std::string HexWords(const ScreenColour& colour)
{
    char words[8];
    std::snprintf(words, sizeof words, "#%02x%02x%02x", colour[0], colour[1], colour[2]);
    return words;
}

} // namespace zvk::Pelkraft::Client
