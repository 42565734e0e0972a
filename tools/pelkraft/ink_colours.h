#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace zvk::Pelkraft::Client {

// Red, green and blue as a screen takes them.
using ScreenColour = std::array<std::uint8_t, 3>;

// Colours that the command line gives to inks, by the name in upper case.
using InkColours = std::map<std::string, ScreenColour>;

// Returns the colour of a full layer of the ink on white paper: as given, else as usual for the
// name in any case and with any blanks or dashes, else one that depends on the name alone.
ScreenColour ColourOfInk(const std::string& name, const InkColours& given);

// Returns the colour that a unit of the ink puts on paper, in units of the full ink: 0.4 for the
// light and grey inks by their usual names, 1 for all others.
double StrengthOfInk(const std::string& name);

// Reads "NAME=#RRGGBB"; anything else is wrong usage.
void AddInkColour(const std::string& option, InkColours& given);

// "#rrggbb"
std::string HexWords(const ScreenColour& colour);

} // namespace zvk::Pelkraft::Client
