#pragma once

#include "tools/pelkraft/step_choice.h"

#include <string>

namespace zvk::Pelkraft::Client {

// The end of a sentence about inks that can't be dithered.
inline constexpr const char* toneAdvice = ", which --tone equal or a CSV file may give";

// Tells which ink the steps of a pattern are taken to have: by the name of a tone, or by the path
// of a CSV file.
StepChoice ChooseSteps(const LoadedPattern& pattern, Levels levels, const std::string& tone);

} // namespace zvk::Pelkraft::Client
