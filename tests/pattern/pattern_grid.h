#pragma once

#include "pelkraft/dot_weave_pattern.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A pattern by its measures. Each in-colour has three steps and feeds each ink whose number it is
// a fellow of; a drawing one has two combinations.
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

// Both generations on all engines, with 1 to 16 colours and inks; each of them can be loaded.
std::vector<PatternShape> AllPatternShapes();

// Steps of so many bytes, some of them above the highest.
std::vector<unsigned char> NoisySteps(std::size_t bytes);

} // namespace zvk::Pelkraft::TestSupport
