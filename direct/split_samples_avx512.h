#pragma once

#include "common/lanes_avx512.h"
#include "direct/narrow_words_lanes.h"
#include "direct/split_merge_table.h"

// Each struct says how a split treats the samples on their way: it loads a vector of them from the
// row, sorts them with sampleBytes each and stores a vector of them to each plane. Only for files
// built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

struct alignas(64) Places
{
    unsigned char bytes[64];
};

constexpr int vectorBytes = 64;

template <int bytes>
struct KeptSamples
{
    static constexpr int rowBytes = bytes;
    static constexpr int sampleBytes = bytes;
    static constexpr int planeBytes = bytes;

    // The byte that is number `byte` in the order of the row stands here.
    static constexpr int PlaceOf(int byte) { return byte; }
    static Lanes LoadFrom(const unsigned char* row) { return Load(row); }
    static void StoreTo(unsigned char* plane, Lanes v) { Store(plane, v); }
    static SplitKernel KernelOf(const SplitMergeKernels& tables, int channels)
    {
        return SplitAt(tables, bytes, channels);
    }
};

constexpr Places Twice(int first)
{
    Places places{};
    for (int i = 0; i < vectorBytes; ++i)
        places.bytes[i] = static_cast<unsigned char>(first + i / 2);
    return places;
}

constexpr Places twiceLow = Twice(0);
constexpr Places twiceHigh = Twice(vectorBytes / 2);

struct WidenedSamples
{
    static constexpr int rowBytes = 1;
    static constexpr int sampleBytes = 1;
    static constexpr int planeBytes = 2;

    static constexpr int PlaceOf(int byte) { return byte; }
    static Lanes LoadFrom(const unsigned char* row) { return Load(row); }
    static void StoreTo(unsigned char* plane, Lanes v)
    {
        Store(plane, _mm512_permutexvar_epi8(Load(twiceLow.bytes), v));
        Store(plane + vectorBytes, _mm512_permutexvar_epi8(Load(twiceHigh.bytes), v));
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

    // The pack leaves eight bytes of its first source in each lane, then eight of its second. The
    // permutes that sort the samples set that right too.
    static constexpr int PlaceOf(int byte)
    {
        const int eight = byte / 8;
        return 16 * (eight % 4) + 8 * (eight / 4) + byte % 8;
    }
    static Lanes LoadFrom(const unsigned char* row)
    {
        return Pack16(NarrowWords(Load(row)), NarrowWords(Load(row + vectorBytes)));
    }
    static void StoreTo(unsigned char* plane, Lanes v) { Store(plane, v); }
    static SplitKernel KernelOf(const SplitMergeKernels& tables, int channels)
    {
        return NarrowSplitAt(tables, channels);
    }
};

} // namespace
} // namespace zvk::Pelkraft
