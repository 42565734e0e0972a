#pragma once

#include "pattern/dot_weave_pattern_engine.h"

#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::int32_t firstVersionOfSecondGeneration = 3;

// Throws as InitFromText does, and the wide "DotWeavePattern::Init invalid DotWeave pattern
// configuration file!" for a text without in-colours or out-inks.
void LoadEngine(DotWeavePatternEngine& engine, char* text);

} // namespace zvk::Pelkraft
