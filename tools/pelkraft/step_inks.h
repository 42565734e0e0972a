#pragma once

#include "tools/pelkraft/pattern_outline.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The expected ink of each step of an in-colour, in thousandths of a unit.
using StepInks = std::vector<std::uint32_t>;

// An in-colour and how many steps it has.
struct SteppedColour
{
    std::string name;
    int steps = 1;
};

// By in-colour, from the shares that the pattern asks for: each value of an ink counts with the
// ink's strength.
std::vector<StepInks> CoverageInks(const PatternOutline& outline,
                                   const std::vector<SteppedColour>& colours,
                                   const std::vector<std::string>& outInks);

// By in-colour, with equal distances from step to step.
std::vector<StepInks> EqualInks(const std::vector<SteppedColour>& colours);

// By in-colour, from a text of lines with an in-colour, a step and its ink between commas:
// "Cyan,1,12.8". An ink has up to three places after its point. Each step of each in-colour stands
// in one line, in any order; blank lines, and those that begin with #, are passed over. What breaks
// these rules is a bad input file.
std::vector<StepInks> ReadStepInks(const std::string& path, const std::string& text,
                                   const std::vector<SteppedColour>& colours);

// The first step that keeps tones from being dithered: the first one with ink, or one that has no
// more than the step before it.
std::optional<int> FindFlatStep(const StepInks& inks);

// Says what is wrong with that step.
std::string FlatStepWords(const StepInks& inks, int step);

} // namespace zvk::Pelkraft::Client
