#pragma once

#include "pelkraft/dot_weave_pattern.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// Each in-colour has three steps and feeds the inks whose number is its own modulo the in-colours.
// A drawing pattern has two combinations.
struct PatternShape
{
    int version;
    int inColors;
    int outInks;
    bool draws;
    DotWeavePattern::Engine engine;
};

std::string TextOf(const PatternShape& shape);
std::string Describe(const PatternShape& shape);

// The list has both generations on all engines, with 1 to 16 colours and inks. All can be loaded.
std::vector<PatternShape> AllPatternShapes();

// Some of these steps are above the highest.
std::vector<unsigned char> NoisySteps(std::size_t bytes);

} // namespace zvk::Pelkraft::TestSupport
