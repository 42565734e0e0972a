#pragma once

#include "pattern/pattern_combinations.h"
#include "tools/pelkraft/pattern_outline.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

constexpr std::size_t placeLimit = 16;
// Draws of the first generation are below this.
constexpr std::uint64_t drawLimit = 32768;

// The steps of an in-colour that are drawn together, and its combinations.
struct InColourDraws
{
    StepDistributions distributions;
    std::uint64_t combinations = 1;
};

// The figures of a pattern's combinations, as the engines have them.
struct CombinationModel
{
    // Empty, or why there is nothing below the draws.
    std::string obstacle;
    std::vector<InColourDraws> draws;
    // Saturates.
    std::uint64_t combinations = 1;

    // The common denominator by which the first generation draws.
    std::uint32_t total = 1;
    bool totalWraps = false;
    // Combinations with a share that a draw of the first generation never reaches.
    std::size_t unreachable = 0;
    // Entries of the field that the pattern's generation draws from.
    std::uint64_t fieldSize = 65536;
    // The most by which the share of a combination in the second generation's field is off.
    double fieldSkew = 0;
    // Stored values of the vector engine: the most that one combination needs, and which one.
    std::size_t places = 0;
    std::size_t fullest = 0;
};

// Multiplies out the records of the outline.
CombinationModel BuildCombinations(const PatternOutline& outline);

} // namespace zvk::Pelkraft::Client
