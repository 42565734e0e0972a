#include "dither/tone_curve.h"

#include <algorithm>

namespace zvk::Pelkraft {

ToneCurve::ToneCurve(const ToneScale& newScale, std::uint32_t newLargest)
    : inks(newScale.inks), isReversed(newScale.fullInk < newScale.noInk),
      noInk(isReversed ? newLargest - newScale.noInk : newScale.noInk),
      range((isReversed ? newLargest - newScale.fullInk : newScale.fullInk) - noInk)
{}

std::uint64_t ToneCurve::Level(std::uint32_t sample) const
{
    const std::uint64_t ink = std::clamp<std::uint64_t>(sample, noInk, noInk + range) - noInk;
    // Inks are compared as multiples of the range, so that nothing is rounded before its time.
    const std::uint64_t wanted = ink * inks.back();
    const auto next = std::upper_bound(
        inks.begin(), inks.end(), wanted,
        [this](std::uint64_t value, std::uint32_t stepInk) { return value < stepInk * range; });
    const auto step = static_cast<std::uint64_t>(next - inks.begin()) - 1;
    if (next == inks.end())
        return step * ranksPerStep;
    const std::uint64_t above = wanted - *(next - 1) * range;
    const std::uint64_t distance = (*next - *(next - 1)) * range;
    return step * ranksPerStep + (2 * ranksPerStep * above + distance - 1) / (2 * distance);
}

} // namespace zvk::Pelkraft
