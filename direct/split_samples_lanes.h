#pragma once

#include "direct/narrow_words_lanes.h"
#include "direct/split_merge_table.h"

// Each struct says how a split treats the samples on their way: it loads them from the row, sorts
// them with sampleBytes each and stores a vector of them to each plane. Included after one of the
// vocabularies common/lanes_*.h, for vectors of one or two lanes.
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

template <int bytes>
struct KeptSamples
{
    static constexpr int rowBytes = bytes;
    static constexpr int sampleBytes = bytes;
    static constexpr int planeBytes = bytes;
    // The samples of a lane come from so many places of the row, see Stretch.
    static constexpr int stretches = 1;

    static Lanes LoadFrom(const unsigned char* row, std::ptrdiff_t step)
    {
        return LoadSpread(row, step);
    }

    static void StoreTo(unsigned char* plane, Lanes v) { Store(plane, v); }

    static SplitKernel KernelOf(const SplitMergeKernels& tables, int channels)
    {
        return SplitAt(tables, bytes, channels);
    }
};

// Unpacking doubles the first half of every lane, then the second: taken from two stretches of
// the row, each half is followed in the row by that of the next lane, and no lane has to move.
struct WidenedSamples
{
    static constexpr int rowBytes = 1;
    static constexpr int sampleBytes = 1;
    static constexpr int planeBytes = 2;
    static constexpr int stretches = 2;

    static Lanes LoadFrom(const unsigned char* row, std::ptrdiff_t step)
    {
        return LoadSpread(row, step);
    }

    static void StoreTo(unsigned char* plane, Lanes v)
    {
        Store(plane, UnpackLow<1>(v, v));
        Store(plane + std::ptrdiff_t{16} * laneCount, UnpackHigh<1>(v, v));
    }

    static SplitKernel KernelOf(const SplitMergeKernels& tables, int channels)
    {
        return SplitWidenAt(tables, channels);
    }
};

struct NarrowedSamples
{
    static constexpr int rowBytes = 2;
    static constexpr int sampleBytes = 1;
    static constexpr int planeBytes = 1;
    static constexpr int stretches = 1;

    static Lanes LoadFrom(const unsigned char* row, std::ptrdiff_t step)
    {
        return Pack16(NarrowWords(LoadSpread(row, step)), NarrowWords(LoadSpread(row + 16, step)));
    }

    static void StoreTo(unsigned char* plane, Lanes v) { Store(plane, v); }

    static SplitKernel KernelOf(const SplitMergeKernels& tables, int channels)
    {
        return NarrowSplitAt(tables, channels);
    }
};

} // namespace
} // namespace zvk::Pelkraft
