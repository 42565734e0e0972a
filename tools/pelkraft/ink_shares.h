#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tools/pelkraft/combination_model.h"
#include "tools/pelkraft/pattern_outline.h"

#include <vector>

namespace zvk::Pelkraft::Client {

// The share of all pixels in which an ink has a value.
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

// The shares that the text asks for, by ink that follows the in-colour and by value, in doubles
// that are the same on every machine. None is measured.
std::vector<InkShares> ExpectedInks(const PatternOutline& outline, int inColour, int step);

// Sets the shares that the text asks for beside those of one row that walks the whole field of the
// pattern, or only its first part where the field is very large. Without a pattern the measured
// shares are NaN.
std::vector<StepShares> MeasureShares(const PatternOutline& outline, const CombinationModel& model,
                                      DotWeavePattern* pattern);

// The mean value of an ink, as the text asks for it and as measured.
struct MeanInk
{
    double expected = 0;
    double measured = 0;
};

MeanInk MeanOf(const InkShares& ink);
// The sum over all inks of the step.
MeanInk MeanOf(const StepShares& step);

} // namespace zvk::Pelkraft::Client
