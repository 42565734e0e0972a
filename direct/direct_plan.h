#pragma once

#include "common/conversion.h"
#include "common/road.h"
#include "direct/kernels.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::size_t maxMapEntries = 64;

// One sweep over a row, or over a tile of it.
enum class PassKind : std::uint8_t
{
    Copy,
    Widen,
    Narrow,
    Pack,
    NarrowPack,
    Unpack,
    UnpackWiden,
    MirrorBits,
    // Pixels of an interleaved row, or the samples of each plane: mapped, mirrored and repeated.
    Step,
    // Whole pixels of any size, mirrored and repeated.
    Move,
    Split,
    // Split and Pack in one.
    PackSplit,
    // Split and Widen in one.
    SplitWiden,
    // Narrow and Split in one.
    NarrowSplit,
    Merge,
};

// The pixels after a pass: an interleaved row, or planes.
struct PassOutput
{
    PassKind kind;
    bool planar;
    std::uint8_t bits;
};

// A conversion as one to four passes. The record is small, since each call makes one; what a
// field's meaning depends on stands in the field before it.
struct DirectPlan
{
    const Kernels* kernels;
    Road road;
    std::uint8_t passCount;
    std::uint8_t sourceBits;
    bool sourcePlanar;
    bool mirrored;
    // Entries choose the channels of the source; a split does it.
    bool mapped;
    bool splitMaps;
    // 1, 2 or 4.
    std::uint8_t repeat;
    std::array<PassOutput, 4> passes;
    std::uint32_t sourceChannels;
    std::uint32_t channels;
    // The first source pixel that is read, of a mirrored row too.
    std::size_t firstPixel;
    std::size_t sourcePixels;
    std::size_t pixels;
    // Source pixels of a tile, or 0 where one pass does the whole row.
    std::size_t tilePixels;
    // Channels that go through the tile at a time.
    std::size_t tileChannels;
    // A pass of the kind Step uses it.
    PixelStep step;
    // There is one for each channel, negative for zeros. They are left unset where the plan is not
    // mapped.
    std::array<std::int32_t, maxMapEntries> entries;
    // Each channel has the number of the first one with the same entry, or -1 for zeros. They are
    // left unset where no split maps.
    std::array<std::int32_t, maxMapEntries> firstUses;
};

// Answers whether the direct road serves the conversion, whose rows are known to be served by
// some road. It declines a map of more than maxMapEntries entries, and one with an entry beyond
// the source's channels; a map of no more entries is copied even so.
bool MakeDirectPlan(DirectPlan& plan, const ConversionRequest& request, const FormatPair& formats);

// Two rows in memory. The step leads from a plane to the next; interleaved rows have none.
struct DirectRows
{
    const unsigned char* source;
    std::ptrdiff_t sourcePlaneStep;
    unsigned char* target;
    std::ptrdiff_t planeStep;
};

// The rows must not overlap.
void RunDirect(const DirectPlan& plan, const DirectRows& rows);

} // namespace zvk::Pelkraft
