#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tools/pelkraft/combination_model.h"
#include "tools/pelkraft/pattern_outline.h"

#include <vector>

namespace zvk::Pelkraft::Client {

// How often an ink has a value, of all pixels.
struct ValueShare
{
    int value = 0;
    double expected = 0;
    double measured = 0;
};

struct InkShares
{
    int outInk = 0;
    // By value.
    std::vector<ValueShare> values;
};

// One step of one in-colour, all others at step 0, and the inks that follow this in-colour.
struct StepShares
{
    int inColour = 0;
    int step = 0;
    std::vector<InkShares> inks;
};

// What the text says of every step, beside what the pattern does in one row that walks its whole
// field, or its first part where the field is beyond all measure.
std::vector<StepShares> MeasureShares(const PatternOutline& outline, const CombinationModel& model,
                                      DotWeavePattern& pattern);

} // namespace zvk::Pelkraft::Client
