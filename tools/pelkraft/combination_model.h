#pragma once

#include "tools/pelkraft/pattern_outline.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

constexpr std::uint64_t inColourCombinationLimit = 32;
constexpr std::uint64_t combinationLimit = 1024;
constexpr std::size_t placeLimit = 16;
// Draws of the first generation are below this.
constexpr std::uint64_t drawLimit = 32768;

// Kept in 32 bits that wrap, as the library keeps them.
struct Proportion
{
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 1;
};

// The steps of an in-colour, by which of them are drawn together.
struct InColourDraws
{
    // The first step of each distinct distribution, and for each step which of them it follows.
    std::vector<std::size_t> firstSteps;
    std::vector<std::size_t> drawOfStep;
    // In 64 bits; 8 draws of 16 alternatives fit.
    std::uint64_t combinations = 1;
};

InColourDraws FindDraws(const InColour& inColour);

// The combinations of a pattern, multiplied out.
struct CombinationModel
{
    // Empty, or why there is nothing below the draws.
    std::string obstacle;
    std::vector<InColourDraws> draws;
    // Saturates.
    std::uint64_t combinations = 1;

    std::vector<Proportion> proportions;
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

CombinationModel BuildCombinations(const PatternOutline& outline);

} // namespace zvk::Pelkraft::Client
