#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace zvk::Pelkraft::Client {

// Red, green and blue as a screen takes them.
using ScreenColour = std::array<std::uint8_t, 3>;

// All that is known of an ink.
struct InkLook
{
    // The colour of a full layer on white paper.
    ScreenColour colour = {};
    // 0 lets all the light through that the colour does, 1 hides what lies below.
    double opacity = 0;
    // The colour that a unit of the ink puts on paper, in units of the full ink.
    double strength = 1;
};

// Inks by their plain names.
using InkTable = std::map<std::string, InkLook>;

// The name in upper case, without blanks, dashes and underscores.
std::string PlainInkName(const std::string& name);

// True for an ink of the table, and for a usual one.
bool IsKnownInk(const std::string& name, const InkTable& given);

// Returns the look of an ink as given, else as usual for its plain name, else one whose colour
// depends on the name alone.
InkLook LookOfInk(const std::string& name, const InkTable& given);
ScreenColour ColourOfInk(const std::string& name, const InkTable& given);

// Returns the colour that a unit of the ink puts on paper, in units of the full ink: 0.4 for the
// light and grey inks by their usual names, 1 for all others.
double StrengthOfInk(const std::string& name);

// Reads "#RRGGBB"; nothing if the words are none.
std::optional<ScreenColour> ReadColour(const std::string& words);

// "#rrggbb"
std::string HexWords(const ScreenColour& colour);

} // namespace zvk::Pelkraft::Client
