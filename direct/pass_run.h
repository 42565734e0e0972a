#pragma once

#include "direct/direct_plan.h"

namespace zvk::Pelkraft {

// Pixels before a pass: an interleaved row, or planes. The bytes are those of the first pixel and
// the first channel that the pass is run on.
struct PassInput
{
    const unsigned char* bytes;
    std::ptrdiff_t planeStep;
    // The plane of each channel, negative for zeros, or null where channel c has plane c.
    const std::int32_t* planes;
    std::uint8_t bits;
    bool planar;
    // Samples of a whole interleaved pixel.
    std::size_t pixelChannels;
    // Samples that stand before the first in its byte of each plane.
    std::size_t skip;
    std::size_t pixels;
};

struct PassTarget
{
    unsigned char* bytes;
    std::ptrdiff_t planeStep;
    // The number of the first channel, by which a split looks into the map.
    std::size_t firstChannel;
    std::size_t pixelChannels;
    std::size_t pixels;
    // Room for the samples that no plane wants.
    unsigned char* dump;
    // Each plane must be written, also those that could be read in another's place.
    bool last;
};

// So many pixels of the source, from a pixel and a channel on.
PassInput SourceAt(const DirectPlan& plan, const DirectRows& rows, std::size_t pixel,
                   std::size_t channel, std::size_t pixels);

// So many pixels of the destination, from a pixel and a channel on. A row's packed pixels are
// asked for from a byte's first one on.
PassTarget TargetAt(const DirectPlan& plan, const DirectRows& rows, std::size_t pixel,
                    std::size_t channel, std::size_t pixels);

// Runs one pass of a plan on some neighbouring channels of the target.
void RunPass(const DirectPlan& plan, const PassOutput& pass, const PassInput& input,
             const PassTarget& target, std::size_t channels);

// Runs the only pass of a plan on whole rows.
void RunOnlyPass(const DirectPlan& plan, const DirectRows& rows);

// A plane of zeros has as many bytes as a tile's plane can have.
constexpr std::size_t maxPlaneBytesOfTile = 2048;

} // namespace zvk::Pelkraft
