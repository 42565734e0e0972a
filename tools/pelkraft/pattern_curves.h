#pragma once

#include "tools/pelkraft/field_spectra.h"
#include "tools/pelkraft/ink_shares.h"
#include "tools/pelkraft/svg_parts.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The place of curves on a page.
struct CurvePlace
{
    int left = 0;
    int width = 0;
    // The title begins here, and names of curves stand between here and the left.
    int legendLeft = 0;
};

// The mean of each ink over the steps of an in-colour, in percent of the highest value in all
// shares: a line as the text asks, a dot as measured. Where there are several inks, one more curve
// has all of them together, each by its strength.
SvgPart DrawCoverage(const CurvePlace& place, int inColour, const std::string& name,
                     const std::vector<std::string>& outInks,
                     const std::vector<StepShares>& shares);

// The power of the drops by their frequency.
SvgPart DrawSpectrum(const CurvePlace& place, const FieldSpectrum& spectrum,
                     const std::string& name, const std::string& ink);

} // namespace zvk::Pelkraft::Client
