#pragma once

#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/pattern_text.h"

#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::Client {

constexpr std::size_t spectrumSide = 256;

// They tell how the drops of an ink lie on an even area of a step.
struct FieldSpectrum
{
    int inColour = 0;
    int step = 0;
    int outInk = 0;
    // RadialSpectrum gives it for the values of the ink.
    std::vector<double> power;
};

// For each in-colour that draws, the spectrum of the step and ink that vary most from pixel to
// pixel.
std::vector<FieldSpectrum> MeasureSpectra(const PatternText& text,
                                          const std::vector<StepShares>& shares);

} // namespace zvk::Pelkraft::Client
