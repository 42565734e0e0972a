#pragma once

#include "tools/pelkraft/step_plan.h"

#include <string>

namespace zvk::Pelkraft::Client {

struct LoadedPattern;

// Tells which ink the steps of a pattern are taken to have: "coverage" for what the pattern's
// shares give, "equal" for equal distances, else the path of a CSV file. Where the way is dither
// without another choice, inks that do not rise are refused.
StepChoice ChooseSteps(const LoadedPattern& pattern, Levels levels, const std::string& tone);

// Warns of an in-colour whose inks do not rise, so that its tones are quantized.
void WarnOfFlatInks(const LoadedPattern& pattern, const StepChoice& steps, std::size_t inColour);

} // namespace zvk::Pelkraft::Client
