#pragma once

#include "common/road.h"
#include "dither/tone_curve.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zvk::Pelkraft {

// A dither as it is asked for, with all numbers in their ranges.
struct DitherRequest
{
    // By channel.
    std::vector<ToneScale> scales;
    // 8 or 16.
    int bits = 8;
    // maskPlaces ranks, which are not kept.
    const std::uint16_t* mask = nullptr;
    Road road = Road::Portable;
};

// Turns rows of interleaved samples into rows of steps, the steps of a pixel side by side. A step
// depends on the sample, its channel and its place on the page alone. An object never changes, and
// a call allocates nothing.
class DitherRows
{
public:
    virtual ~DitherRows() = default;

    // The first pixel stands at column x of row y of the page. Steps may take the place of samples
    // from the first one on.
    virtual void Apply(std::uint64_t x, std::uint64_t y, const unsigned char* source,
                       unsigned char* target, std::size_t pixels) const = 0;
};

std::unique_ptr<const DitherRows> MakeDitherRows(const DitherRequest& request);

} // namespace zvk::Pelkraft
