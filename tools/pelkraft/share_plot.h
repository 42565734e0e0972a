#pragma once

#include "tools/pelkraft/field_spectra.h"
#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/pattern_outline.h"
#include "tools/pelkraft/svg_parts.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// All that is drawn of a pattern.
struct PatternPlot
{
    const std::string& title;
    const PatternOutline& outline;
    const std::vector<StepShares>& shares;
    const std::vector<FieldSpectrum>& spectra;
};

// An empty page for drawings of patterns.
SvgPage PatternPage();

// Adds bars for the shares of every ink value, expected above measured, then for each in-colour
// the mean inks over its steps, and the spectra.
void DrawPattern(SvgPage& page, const PatternPlot& plot);

} // namespace zvk::Pelkraft::Client
