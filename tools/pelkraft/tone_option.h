#pragma once

#include "tools/pelkraft/step_choice.h"

#include <string>

namespace zvk::Pelkraft::Client {

// Tells which ink the steps of a pattern are taken to have: by the name of a tone, or by the path
// of a CSV file.
StepChoice ChooseSteps(const LoadedPattern& pattern, Levels levels, const std::string& tone);

} // namespace zvk::Pelkraft::Client
