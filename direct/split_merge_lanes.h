#pragma once

#include "common/inlining.h"
#include "direct/short_rows_lanes.h"
#include "direct/split_samples_lanes.h"
#include "direct/transpose_lanes.h"

// The dense kernels, over one of the vocabularies common/lanes_*.h, which is included before. The
// file that includes this one defines NarrowerKernels() and StoreRuns().
// Only for files built with vector flags: all of it has internal linkage on purpose.
//
// Each 16-byte lane works on a block of 16 / sampleBytes pixels of its own. The block is cut into
// `order` pieces of whole pixels; a piece, sorted by channel, is one row of the transposition:
//
//   3 channels, order 4   r0 g0 b0 r1 g1 b1 r2 .. b3   the 12 bytes of a piece
//                         r0 r1 r2 r3 g0 .. g3 b0 .. b3 -- -- -- --   sorted: 4 units
namespace zvk::Pelkraft {
namespace {

// Each lane's part of the vectors in turn is one run of bytes; the runs lie one after the other.
template <int count>
void StoreRuns(unsigned char* block, const Lanes* v);

constexpr unsigned char noByte = 0x80;

struct alignas(16) UnitMask
{
    unsigned char bytes[16];
};

// The places of a piece's bytes before and after it is sorted.
template <int sampleBytes, int channels>
struct Pieces
{
    static constexpr int order = channels <= 2 ? 2 : channels <= 4 ? 4 : channels <= 8 ? 8 : 16;
    static constexpr int unitBytes = 16 / order;
    static constexpr int pixels = unitBytes / sampleBytes;
    static constexpr int bytes = pixels * channels * sampleBytes;
    static constexpr int laneBytes = order * bytes;
    static constexpr int lanePixels = order * pixels;
    static constexpr bool areSorted = pixels == 1;

    // The first byte of the piece is number `start` of the vector.
    static constexpr UnitMask Sort(int start)
    {
        UnitMask mask{};
        for (int i = 0; i < 16; ++i) {
            const int channel = i / unitBytes;
            const int pixel = i % unitBytes / sampleBytes;
            const int from = (pixel * channels + channel) * sampleBytes + i % sampleBytes + start;
            mask.bytes[i] = channel < channels ? static_cast<unsigned char>(from) : noByte;
        }
        return mask;
    }

    // Planes are interleaved `order` at a time: between the pixels stand channels that are not.
    static constexpr int PaddedPlace(int byte)
    {
        const int pixel = byte / (channels * sampleBytes);
        return pixel * order * sampleBytes + byte % (channels * sampleBytes);
    }

    // The piece without that padding: `count` bytes from number `first` on, put at number `to`.
    static constexpr UnitMask Squeeze(int first, int count, int to)
    {
        UnitMask mask{};
        for (int i = 0; i < 16; ++i) {
            const bool isNamed = i >= to && i < to + count;
            mask.bytes[i] =
                isNamed ? static_cast<unsigned char>(PaddedPlace(first + i - to)) : noByte;
        }
        return mask;
    }
};

template <int sampleBytes, int channels>
struct PieceMasks
{
    using Piece = Pieces<sampleBytes, channels>;
    static constexpr int spareBytes = 16 - Piece::bytes;

    static constexpr UnitMask sort = Piece::Sort(0);
    static constexpr UnitMask sortAtEnd = Piece::Sort(spareBytes);
    static constexpr UnitMask squeeze = Piece::Squeeze(0, Piece::bytes, 0);
    static constexpr UnitMask squeezeAtEnd = Piece::Squeeze(0, Piece::bytes, spareBytes);
    // The last 16 bytes of a block begin with the end of the piece before the last one.
    static constexpr UnitMask squeezeBefore =
        Piece::Squeeze(Piece::bytes - spareBytes, spareBytes, 0);
};

// Calls body(pixel) at every block's first pixel; the last block may overlap the one before.
template <int blockPixels, typename Body>
PELKRAFT_ALWAYS_INLINE inline void ForBlocks(std::size_t pixels, Body body)
{
    const std::size_t last = pixels - blockPixels;
    for (std::size_t pixel = 0; pixel < pixels; pixel += blockPixels)
        body(pixel < last ? pixel : last);
}

// The pieces of each lane start at these samples of the block. A stretch of one lane is followed
// by that of the next one:
//
//   1 stretch, order 4, 2 lanes    0 1 2 3 | 0 1 2 3          piece numbers, lane 0 | lane 1
//   2 stretches                    0 1 | 0 1 | 2 3 | 2 3      lane 0 | lane 1 | lane 0 | lane 1
template <typename Samples, int channels>
struct Stretch
{
    using Piece = Pieces<Samples::sampleBytes, channels>;
    static constexpr int pieces = Piece::order / Samples::stretches;
    static constexpr int pieceSamples = Piece::pixels * channels;
    static constexpr int step = pieces * pieceSamples;

    static constexpr int StartOf(int piece)
    {
        return piece / pieces * laneCount * step + piece % pieces * pieceSamples;
    }
};

// The last piece is loaded so that it ends with the block: no byte beyond it is read.
template <typename Samples, int channels>
PELKRAFT_ALWAYS_INLINE inline void LoadPieces(const unsigned char* block, Lanes* v)
{
    using Piece = Pieces<Samples::sampleBytes, channels>;
    using Masks = PieceMasks<Samples::sampleBytes, channels>;
    using Place = Stretch<Samples, channels>;
    const Lanes sort = Broadcast(Masks::sort.bytes);
    const Lanes sortAtEnd = Broadcast(Masks::sortAtEnd.bytes);

    Unroll<Piece::order>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        constexpr bool isLast = i + 1 == Piece::order;
        constexpr int spareSamples = isLast ? Masks::spareBytes / Samples::sampleBytes : 0;
        constexpr int start = (Place::StartOf(i) - spareSamples) * Samples::rowBytes;
        v[i] = Samples::LoadFrom(block + start, Place::step * Samples::rowBytes);
        if constexpr (isLast && Piece::bytes < 16)
            v[i] = Shuffle(v[i], sortAtEnd);
        else if constexpr (!Piece::areSorted)
            v[i] = Shuffle(v[i], sort);
    });
}

template <typename Samples, int channels>
void SplitDense(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    using Piece = Pieces<Samples::sampleBytes, channels>;
    constexpr int blockPixels = Piece::lanePixels * laneCount;
    if (pixels < blockPixels)
        return SplitShort<Samples, channels>(row, planes, pixels);

    unsigned char* to[channels];
    for (int channel = 0; channel < channels; ++channel)
        to[channel] = planes[channel];
    ForBlocks<blockPixels>(pixels, [&](std::size_t pixel) PELKRAFT_ALWAYS_INLINE {
        Lanes v[Piece::order];
        LoadPieces<Samples, channels>(row + pixel * channels * Samples::rowBytes, v);
        Transpose<Piece::order, Piece::order, channels>(v);
        Unroll<channels>([&](auto channel) PELKRAFT_ALWAYS_INLINE {
            Samples::StoreTo(to[channel] + pixel * Samples::planeBytes, v[channel]);
        });
    });
}

// Ascending: a piece may spoil bytes of the next one, never of the one before.
template <int sampleBytes, int channels>
PELKRAFT_ALWAYS_INLINE inline void StorePieces(unsigned char* block, Lanes* v)
{
    using Piece = Pieces<sampleBytes, channels>;
    using Masks = PieceMasks<sampleBytes, channels>;
    constexpr int last = Piece::order - 1;
    if constexpr (Piece::bytes < 16) {
        const Lanes end = Shuffle(v[last], Broadcast(Masks::squeezeAtEnd.bytes));
        const Lanes before = Shuffle(v[last - 1], Broadcast(Masks::squeezeBefore.bytes));
        v[last] = Or(end, before);
    }
    if constexpr (Piece::bytes < 16 && !Piece::areSorted) {
        const Lanes squeeze = Broadcast(Masks::squeeze.bytes);
        Unroll<last>([&](auto i) PELKRAFT_ALWAYS_INLINE { v[i] = Shuffle(v[i], squeeze); });
    }
    Unroll<laneCount>([&](auto lane) PELKRAFT_ALWAYS_INLINE {
        unsigned char* laneBlock = block + lane * Piece::laneBytes;
        Unroll<last>([&](auto i) PELKRAFT_ALWAYS_INLINE {
            StoreLane<lane>(laneBlock + i * Piece::bytes, v[i]);
        });
        StoreLane<lane>(laneBlock + Piece::laneBytes - 16, v[last]);
    });
}

template <int sampleBytes, int channels>
PELKRAFT_ALWAYS_INLINE inline void MergePieces(const unsigned char* const* from, std::size_t at,
                                               unsigned char* block)
{
    using Piece = Pieces<sampleBytes, channels>;
    Lanes v[Piece::order];
    Unroll<channels>([&](auto channel)
                         PELKRAFT_ALWAYS_INLINE { v[channel] = Load(from[channel] + at); });
    Interleave<Piece::order, sampleBytes, channels>(v);
    StorePieces<sampleBytes, channels>(block, v);
}

// Three vectors of the first, middle and last third of each pixel, 4 bytes each, to three in turn:
//   a0 b0 c0 a1   b1 c1 a2 b2   c2 a3 b3 c3
PELKRAFT_ALWAYS_INLINE inline void InterleaveThirds(Lanes a, Lanes b, Lanes c, Lanes* v)
{
    const Lanes a0b0a1b1 = UnpackLow<4>(a, b);
    const Lanes b0c0b1c1 = UnpackLow<4>(b, c);
    const Lanes a2b2a3b3 = UnpackHigh<4>(a, b);
    const Lanes b2c2b3c3 = UnpackHigh<4>(b, c);
    v[0] = PickFours<0, 1, 0, 2>(a0b0a1b1, PickFours<0, 0, 1, 1>(c, a));
    v[1] = PickFours<2, 3, 0, 1>(b0c0b1c1, a2b2a3b3);
    v[2] = PickFours<0, 2, 2, 3>(PickFours<2, 2, 3, 3>(c, a), b2c2b3c3);
}

// 12 channels of one byte: three groups of 4 need no more shuffles than one of 16, and give whole
// vectors to store, 3 where pieces take 4.
PELKRAFT_ALWAYS_INLINE inline void MergeThirds(const unsigned char* const* from, std::size_t pixel,
                                               unsigned char* block)
{
    Lanes group[3][4];
    Unroll<3>([&](auto third) PELKRAFT_ALWAYS_INLINE {
        Unroll<4>([&](auto i) PELKRAFT_ALWAYS_INLINE {
            group[third][i] = Load(from[4 * third + i] + pixel);
        });
        Interleave<4, 1, 4>(group[third]);
    });
    Lanes v[12];
    Unroll<4>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        InterleaveThirds(group[0][i], group[1][i], group[2][i], v + 3 * i);
    });
    StoreRuns<12>(block, v);
}

template <int sampleBytes, int channels>
void MergeDense(const unsigned char* const* planes, unsigned char* row, std::size_t pixels)
{
    using Piece = Pieces<sampleBytes, channels>;
    constexpr int blockPixels = Piece::lanePixels * laneCount;
    if (pixels < blockPixels)
        return MergeShort<sampleBytes, channels>(planes, row, pixels);

    const unsigned char* from[channels];
    for (int channel = 0; channel < channels; ++channel)
        from[channel] = planes[channel];
    ForBlocks<blockPixels>(pixels, [&](std::size_t pixel) PELKRAFT_ALWAYS_INLINE {
        unsigned char* block = row + pixel * channels * sampleBytes;
        if constexpr (channels == 12 && sampleBytes == 1)
            MergeThirds(from, pixel, block);
        else
            MergePieces<sampleBytes, channels>(from, pixel * sampleBytes, block);
    });
}

} // namespace
} // namespace zvk::Pelkraft
