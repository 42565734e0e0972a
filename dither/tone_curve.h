#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// The ranks of a mask that a step has beside the next one.
inline constexpr std::uint64_t ranksPerStep = 65536;
// The largest expected ink. The products of the tone curve fit 64 bits up to it.
inline constexpr std::uint32_t mostInk = std::uint32_t{1} << 30;
inline constexpr std::size_t mostSteps = 256;

// The tones of a channel: the expected inks of its steps, which begin with 0 and rise, and the
// samples of no ink and of full ink, which differ.
struct ToneScale
{
    std::vector<std::uint32_t> inks;
    std::uint32_t noInk = 0;
    std::uint32_t fullInk = 0;
};

// Tells for each sample between which steps of its channel it lies.
class ToneCurve
{
public:
    // The samples go from 0 to the largest one.
    ToneCurve(const ToneScale& newScale, std::uint32_t newLargest);

    // Samples with less ink for higher numbers are taken from the other end.
    bool IsReversed() const { return isReversed; }
    // The largest number that Level answers.
    std::uint64_t TopLevel() const { return ranksPerStep * (inks.size() - 1); }
    // The step of a sample, times ranksPerStep, and so many of the ranks at which the next step
    // stands instead. A reversed sample is counted from the largest one down. Never falls.
    std::uint64_t Level(std::uint32_t sample) const;

private:
    std::vector<std::uint32_t> inks;
    bool isReversed;
    std::uint64_t noInk;
    std::uint64_t range;
};

} // namespace zvk::Pelkraft
