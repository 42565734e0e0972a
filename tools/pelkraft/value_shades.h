#pragma once

#include "tools/pelkraft/ink_colours.h"
#include "tools/pelkraft/ink_shares.h"

#include <set>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The highest ink value in all shares, at least 1.
int HighestValue(const std::vector<StepShares>& shares);

// Turns ink values into shades of an ink's colour, from white for 0 to full for the highest value
// in all shares: in proportion, or by equal steps where that would leave two of them alike.
class ValueShades
{
public:
    explicit ValueShades(const std::vector<StepShares>& shares);

    ScreenColour Shade(const ScreenColour& ink, int value) const;
    // Says which value full colour stands for, and what paler shades do.
    std::string Words() const;

private:
    std::set<int> values;
    bool inProportion = true;
};

} // namespace zvk::Pelkraft::Client
