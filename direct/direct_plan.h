#pragma once

#include "common/conversion.h"
#include "common/road.h"
#include "direct/kernels.h"
#include "direct/row_patch.h"

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
    // 8-bit tones to levels, and back.
    Quantize,
    Stretch,
    // 16 bits to 8 and back, the numbers kept.
    Cut,
    Extend,
    // Zeros for all channels, where a map names none.
    Clear,
};

constexpr std::size_t passKindCount = static_cast<std::size_t>(PassKind::Clear) + 1;

// A change of the depth treats samples in one of these ways.
enum class Samples : std::uint8_t
{
    // As FillFrom treats them: 8 and 16 bits are tones, 1 and 2 bits are levels.
    AsFill,
    // Full scale becomes full scale.
    AsTones,
    // The number stays, or its low bits.
    AsLevels,
};

// The pixels after a pass: an interleaved row, or planes.
struct PassOutput
{
    PassKind kind;
    bool planar;
    std::uint8_t bits;
};

// Plans of many rows go beyond a fill by these. They outlive the plan, and so does what they point
// to.
struct DirectExtras
{
    Samples samples = Samples::AsFill;
    // The map names no channel of the source.
    bool clears = false;
    // Asks for a last pass that ends in a tile, which is stored when all of its pixels have been
    // read.
    bool staged = false;
    // The tiles are stored past the cache.
    bool streamed = false;
    // A map of more than maxMapEntries entries, none beyond the source's channels.
    const std::int32_t* entries = nullptr;
    // Room for as many numbers.
    std::int32_t* firstUses = nullptr;
    // The samples that are set or turned over at last.
    const RowPatch* patch = nullptr;
};

inline constexpr DirectExtras noExtras = {};

// A conversion as one to five passes. The record is small, since each call makes one; what a
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
    std::array<PassOutput, 5> passes;
    const DirectExtras* extras;
    // The last pass ends in a tile as well.
    bool staged;
    // The pixels are patched where they stand in the row.
    bool patchesRows;
    std::uint32_t sourceChannels;
    std::uint32_t channels;
    // Bytes of a plane, with the pixels that take no part.
    std::size_t sourcePlaneBytes;
    std::size_t planeBytes;
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
    // Each channel has the number of the first one with the same entry among those that go through
    // the tile with it, or -1 for zeros. They are left unset where no split maps.
    std::array<std::int32_t, maxMapEntries> firstUses;
};

// Answers whether the direct road serves the conversion, whose rows are known to be served by
// some road. It declines a map of more than maxMapEntries entries that stands in no extras, and one
// with an entry beyond the source's channels; a map of no more entries is copied even so.
bool MakeDirectPlan(DirectPlan& plan, const ConversionRequest& request, const FormatPair& formats,
                    const DirectExtras& extras = noExtras);

inline const std::int32_t* EntriesOf(const DirectPlan& plan)
{
    return plan.extras->entries != nullptr ? plan.extras->entries : plan.entries.data();
}

inline const std::int32_t* FirstUsesOf(const DirectPlan& plan)
{
    return plan.extras->firstUses != nullptr ? plan.extras->firstUses : plan.firstUses.data();
}

// Rows in memory. The steps may have either sign.
template <typename Byte>
struct StridedRows
{
    // Byte 0 of the first row, in its first plane.
    Byte* bytes;
    std::ptrdiff_t rowStep;
    // Interleaved rows do without it.
    std::ptrdiff_t planeStep;
};

// Two rows in memory. The step leads from a plane to the next; interleaved rows have none.
struct DirectRows
{
    const unsigned char* source;
    std::ptrdiff_t sourcePlaneStep;
    unsigned char* target;
    std::ptrdiff_t planeStep;
};

// Runs the passes, and the patch where they go tile by tile. The rows must not overlap. They may be
// one and the same if the plan is staged and mirrors and repeats nothing.
void RunDirect(const DirectPlan& plan, const DirectRows& rows);

// The same for rows whose planes stand one directly after the other.
void RunDirect(const DirectPlan& plan, const unsigned char* source, unsigned char* target);

} // namespace zvk::Pelkraft
