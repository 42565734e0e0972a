#include "tools/pelkraft/value_shades.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace zvk::Pelkraft::Client {
namespace {

// Shades that are nearer to each other than this part of full colour look alike.
constexpr int tellableParts = 25;

} // namespace

int HighestValue(const std::vector<StepShares>& shares)
{
    int highest = 1;
    for (const StepShares& step : shares)
        for (const InkShares& ink : step.inks)
            for (const ValueShare& share : ink.values)
                highest = std::max(highest, share.value);
    return highest;
}

ValueShades::ValueShades(const std::vector<StepShares>& shares) : values{0, HighestValue(shares)}
{
    for (const StepShares& step : shares)
        for (const InkShares& ink : step.inks)
            for (const ValueShare& share : ink.values)
                values.insert(share.value);
    const int highest = *values.rbegin();
    for (auto next = std::next(values.begin()); next != values.end(); ++next)
        inProportion = inProportion && (*next - *std::prev(next)) * tellableParts >= highest;
}

ScreenColour ValueShades::Shade(const ScreenColour& ink, int value) const
{
    const auto steps = static_cast<int>(std::distance(values.begin(), values.lower_bound(value)));
    const int part = inProportion ? value : steps;
    const int whole = inProportion ? *values.rbegin() : static_cast<int>(values.size()) - 1;
    ScreenColour shade = {};
    for (std::size_t i = 0; i < shade.size(); ++i)
        shade[i] = static_cast<std::uint8_t>(255 - (255 - ink[i]) * part / whole);
    return shade;
}

std::string ValueShades::Words() const
{
    return "full colour is the highest value, " + std::to_string(*values.rbegin()) +
           (inProportion ? "; lower ones are paler in proportion"
                         : "; each lower one is paler by an equal step, whatever lies between");
}

} // namespace zvk::Pelkraft::Client
