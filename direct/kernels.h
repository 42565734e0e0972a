#pragma once

#include "common/road.h"

#include <array>
#include <cstddef>
#include <cstdint>

// The kernels of the direct road. None of them checks, allocates or keeps anything. Source and
// destination may stand at any address and do not overlap; a kernel reads the bytes of the named
// samples and writes the bytes of the named samples, and no other, for any count from 0 on.
namespace zvk::Pelkraft {

// Pixels of so many samples, one directly after the other, to one plane for each channel, and
// back. A plane may be named twice as a source, never as a destination.
using SplitKernel = void (*)(const unsigned char* row, unsigned char* const* planes,
                             std::size_t pixels);
using MergeKernel = void (*)(const unsigned char* const* planes, unsigned char* row,
                             std::size_t pixels);

// Some neighbouring channels, 17 or more, of pixels that stand pixelBytes apart.
struct WidePixels
{
    std::size_t pixelBytes;
    std::size_t channels;
};
using WideSplitKernel = void (*)(const unsigned char* row, unsigned char* const* planes,
                                 std::size_t pixels, const WidePixels& shape);
using WideMergeKernel = void (*)(const unsigned char* const* planes, unsigned char* row,
                                 std::size_t pixels, const WidePixels& shape);

constexpr std::size_t maxDenseChannels = 16;
constexpr std::size_t maxFusedChannels = 4;
using FusedKernels = std::array<SplitKernel, maxFusedChannels + 1>;

// Indexed by the bytes of a sample less 1. The dense ones are then indexed by the channel count,
// from 2 to maxDenseChannels, and the fused ones by that alone, from 2 to maxFusedChannels; the
// places 0 and 1 are null.
struct SplitMergeKernels
{
    std::array<std::array<SplitKernel, maxDenseChannels + 1>, 2> split;
    std::array<std::array<MergeKernel, maxDenseChannels + 1>, 2> merge;
    std::array<WideSplitKernel, 2> wideSplit;
    std::array<WideMergeKernel, 2> wideMerge;
    // Samples of 8 bits to planes of 16: y = x * 257.
    FusedKernels splitWiden;
    // Samples of 16 bits to planes of 8: y = ((x * 65281 >> 16) + 127) >> 8.
    FusedKernels narrowSplit;
};

// One plane, or an interleaved row whose pixels do not matter.
using SampleKernel = void (*)(const unsigned char* source, unsigned char* destination,
                              std::size_t samples);

// The samples of a packed plane from the one before `end` downwards, packed anew from the top bit
// of the first destination byte on. `end` is counted in samples from the plane's start.
using BitMirrorKernel = void (*)(const unsigned char* plane, std::size_t end,
                                 unsigned char* destination, std::size_t samples);

// The packed ones are indexed by the depth less 1. A kernel that packs sets the unused low bits of
// the last byte to 0. The arrays are plain ones because vector files read them, where the operator
// of std::array would be a weak symbol.
struct SampleKernels
{
    // y = x * 257.
    SampleKernel widen;
    // y = ((x * 65281 >> 16) + 127) >> 8.
    SampleKernel narrow;
    // The lowest bits of each byte.
    SampleKernel pack[2];
    // Levels: 0 and 1, or 0 to 3.
    SampleKernel unpack[2];
    BitMirrorKernel mirror[2];
    // 16-bit samples narrowed, then packed.
    SampleKernel narrowPack[2];
    // Unpacked, then widened to 16 bits.
    SampleKernel unpackWiden[2];
    // Interleaved pixels of 8-bit samples to packed planes. Indexed then by the channel count, from
    // 2 on; the places 0 and 1 are null.
    SplitKernel packSplit[2][maxFusedChannels + 1];
    // 8 bits, tones to levels, each in a byte: y = x / 255 or 3 * x / 255, rounded to the nearest.
    SampleKernel quantize[2];
    // The way back: y = x * 255, or x * 85.
    SampleKernel stretch[2];
    // The low bytes of 16-bit samples.
    SampleKernel cut;
    // 8-bit samples as 16-bit ones of the same number.
    SampleKernel extend;
};

// Whole pixels moved, each of them mapped, repeated and mirrored in one go.
constexpr unsigned char emptyByte = 0x80;
constexpr std::size_t maxStepBytes = 64;

struct PixelStep
{
    std::uint8_t sourceBytes;
    // Counted for one pixel: repeat * destinationBytes stand in the row for each source pixel.
    std::uint8_t destinationBytes;
    // 1, 2 or 4.
    std::uint8_t repeat;
    // The first destination pixel comes from the last source pixel of the run.
    bool mirrored;
    // For each byte of a destination pixel its place in the source pixel, or emptyByte for 0.
    std::array<unsigned char, maxStepBytes> places;
};
// Rows that take the same step: the planes of one row, or one interleaved row.
struct StepRows
{
    const unsigned char* const* sources;
    unsigned char* const* destinations;
    std::size_t count;
};
// The last source pixel is repeated fewer times where the destination pixels end. The source run
// of each row holds destinationPixels / repeat pixels, rounded up.
using StepKernel = void (*)(const PixelStep& step, const StepRows& rows,
                            std::size_t destinationPixels);

// A step made ready for many rows of one length, which become what a step kernel makes of them.
constexpr std::size_t preparedBytes = 704;
struct PreparedStep
{
    void (*run)(const PreparedStep& prepared, const unsigned char* source,
                unsigned char* destination);
    // It outlives the prepared one.
    const PixelStep* step;
    std::size_t destinationPixels;
    // The level's own.
    alignas(64) unsigned char state[preparedBytes];
};
// Fills all but step and destinationPixels, which are set.
using PrepareKernel = void (*)(PreparedStep& prepared);

// Pixels of any size, mirrored and repeated but not mapped.
struct PixelMove
{
    std::size_t pixelBytes;
    std::uint8_t repeat;
    bool mirrored;
};
using MoveKernel = void (*)(const PixelMove& move, const unsigned char* source,
                            unsigned char* destination, std::size_t destinationPixels);

struct PixelKernels
{
    // For pixels of at most stepBytes on either side, the repeats of one pixel not counted.
    StepKernel step;
    std::size_t stepBytes;
    MoveKernel move;
    PrepareKernel prepare;
};

// A pattern is at least this long.
constexpr std::size_t patternBytes = 64;

// Turns over the bits of a row that are set in a pattern, which begins with the row, repeats after
// so many bytes, and goes on for patternBytes more.
using PatchKernel = void (*)(unsigned char* row, std::size_t bytes, const unsigned char* pattern,
                             std::size_t period);
using StoreKernel = void (*)(const unsigned char* source, unsigned char* destination,
                             std::size_t bytes);

// These change finished bytes, or move them.
struct FinishKernels
{
    PatchKernel patch;
    // A copy whose whole lines go past the cache, where the processor can do that.
    StoreKernel stream;
    // Orders such stores before all later ones.
    void (*fence)();
};

struct Kernels
{
    const SplitMergeKernels* splitMerge;
    const SampleKernels* samples;
    const PixelKernels* pixels;
    const FinishKernels* finish;
};

namespace PortableRoad {
const SplitMergeKernels& GetSplitMergeKernels();
const SampleKernels& GetSampleKernels();
const PixelKernels& GetPixelKernels();
const FinishKernels& GetFinishKernels();
} // namespace PortableRoad

namespace VectorRoad {
const SplitMergeKernels& GetSplitMergeKernels();
const SampleKernels& GetSampleKernels();
const PixelKernels& GetPixelKernels();
const FinishKernels& GetFinishKernels();
} // namespace VectorRoad

namespace Avx2Road {
const SplitMergeKernels& GetSplitMergeKernels();
const SampleKernels& GetSampleKernels();
const PixelKernels& GetPixelKernels();
const FinishKernels& GetFinishKernels();
} // namespace Avx2Road

namespace Avx512Road {
const SplitMergeKernels& GetSplitMergeKernels();
const SampleKernels& GetSampleKernels();
const PixelKernels& GetPixelKernels();
const FinishKernels& GetFinishKernels();
} // namespace Avx512Road

const Kernels& KernelsOf(Road road);

} // namespace zvk::Pelkraft
