#pragma once

#include "common/inlining.h"
#include "direct/colliding_planes.h"
#include "direct/split_merge_lanes.h"

// The kernels that take the channels of a pixel in groups of 16 or 8 bytes, over the same
// vocabulary. A last group that is not full overlaps the one before.
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

// So many pixels of a row stay in the first-level cache while the groups take turns.
constexpr std::size_t piecePixels = 256;

// Groups of either size take so many pixels at a time.
template <int sampleBytes>
constexpr std::size_t groupBlock = std::size_t{laneCount} * 16 / sampleBytes;

// A group of so many bytes a pixel: `pixels` of them stand in a lane of each vector.
template <int sampleBytes, int groupBytes>
struct Group
{
    static constexpr int channels = groupBytes / sampleBytes;
    static constexpr int pixels = 16 / groupBytes;
    static constexpr int lanePixels = 16 / sampleBytes;
    static constexpr UnitMask sort = Pieces<sampleBytes, channels>::Sort(0);
};

template <int sampleBytes, int groupBytes>
PELKRAFT_ALWAYS_INLINE inline void SplitGroup(const unsigned char* block, std::size_t pixelBytes,
                                              unsigned char* const* to, std::size_t at)
{
    using Channels = Group<sampleBytes, groupBytes>;
    const auto step = static_cast<std::ptrdiff_t>(pixelBytes);
    Lanes v[Channels::channels];
    Unroll<Channels::channels>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        const unsigned char* from = block + i * Channels::pixels * step;
        if constexpr (Channels::pixels == 1)
            v[i] = LoadSpread(from, step * Channels::lanePixels);
        else
            v[i] = Shuffle(LoadHalves(from, step, step * Channels::lanePixels),
                           Broadcast(Channels::sort.bytes));
    });
    Transpose<Channels::channels, Channels::channels, Channels::channels>(v);
    Unroll<Channels::channels>([&](auto i) PELKRAFT_ALWAYS_INLINE { Store(to[i] + at, v[i]); });
}

template <int sampleBytes, int groupBytes>
PELKRAFT_ALWAYS_INLINE inline void MergeGroup(const unsigned char* const* from, std::size_t at,
                                              unsigned char* block, std::size_t pixelBytes)
{
    using Channels = Group<sampleBytes, groupBytes>;
    const auto step = static_cast<std::ptrdiff_t>(pixelBytes);
    Lanes v[Channels::channels];
    Unroll<Channels::channels>([&](auto i) PELKRAFT_ALWAYS_INLINE { v[i] = Load(from[i] + at); });
    Interleave<Channels::channels, sampleBytes, Channels::channels>(v);
    Unroll<laneCount>([&](auto lane) PELKRAFT_ALWAYS_INLINE {
        Unroll<Channels::channels>([&](auto i) PELKRAFT_ALWAYS_INLINE {
            unsigned char* to = block + (lane * Channels::lanePixels + i * Channels::pixels) * step;
            if constexpr (Channels::pixels == 1)
                StoreLane<lane>(to, v[i]);
            else
                StoreHalves<lane>(to, step, v[i]);
        });
    });
}

// One group of the pixels from `first` up to `end`; row and planes are the group's own.
template <int sampleBytes, int groupBytes>
PELKRAFT_NEVER_INLINE void SplitPiece(const unsigned char* row, unsigned char* const* planes,
                                      std::size_t first, std::size_t end, std::size_t pixelBytes)
{
    using Channels = Group<sampleBytes, groupBytes>;
    unsigned char* to[Channels::channels];
    for (int channel = 0; channel < Channels::channels; ++channel)
        to[channel] = planes[channel];
    ForBlocks<Channels::lanePixels * laneCount>(
        end - first, [&](std::size_t pixel) PELKRAFT_ALWAYS_INLINE {
            SplitGroup<sampleBytes, groupBytes>(row + (first + pixel) * pixelBytes, pixelBytes, to,
                                                (first + pixel) * sampleBytes);
        });
}

template <int sampleBytes, int groupBytes>
PELKRAFT_NEVER_INLINE void MergePiece(const unsigned char* const* planes, unsigned char* row,
                                      std::size_t first, std::size_t end, std::size_t pixelBytes)
{
    using Channels = Group<sampleBytes, groupBytes>;
    const unsigned char* from[Channels::channels];
    for (int channel = 0; channel < Channels::channels; ++channel)
        from[channel] = planes[channel];
    ForBlocks<Channels::lanePixels * laneCount>(
        end - first, [&](std::size_t pixel) PELKRAFT_ALWAYS_INLINE {
            MergeGroup<sampleBytes, groupBytes>(from, (first + pixel) * sampleBytes,
                                                row + (first + pixel) * pixelBytes, pixelBytes);
        });
}

// Planes that collide throw each other's lines out at every change of the group, so that their
// pieces are as long as the first-level cache can hold them.
inline std::size_t LongPieceOf(std::size_t pixelBytes)
{
    constexpr std::size_t pieceBytes = 32768;
    const std::size_t piece = pieceBytes / pixelBytes / 64 * 64;
    if (piece < piecePixels)
        return piecePixels;
    return piece < 4 * piecePixels ? piece : 4 * piecePixels;
}

// Calls whole(channel, first, end) for a group of 16 bytes, half(channel, first, end) for one of 8,
// one group after the other in each piece of the row, which holds a block at least.
template <int sampleBytes, typename Whole, typename Half>
void ForGroups(std::size_t pixels, const WidePixels& shape, bool inHalves, Whole whole, Half half)
{
    const std::size_t channels = shape.channels;
    const std::size_t piece = inHalves ? LongPieceOf(shape.pixelBytes) : piecePixels;
    constexpr std::size_t wholeChannels = 16 / sampleBytes;
    constexpr std::size_t halfChannels = 8 / sampleBytes;
    for (std::size_t first = 0; first < pixels;) {
        const bool isLast = pixels - first < piece + groupBlock<sampleBytes>;
        const std::size_t end = isLast ? pixels : first + piece;
        for (std::size_t channel = 0; channel < channels;) {
            const std::size_t rest = channels - channel;
            if (inHalves || rest <= halfChannels) {
                half(rest < halfChannels ? channels - halfChannels : channel, first, end);
                channel += halfChannels;
            } else {
                whole(rest < wholeChannels ? channels - wholeChannels : channel, first, end);
                channel += wholeChannels;
            }
        }
        first = end;
    }
}

// The row holds a block at least, and the shape 16 bytes of channels, or 8 in halves.
template <int sampleBytes>
void SplitGroups(const unsigned char* row, unsigned char* const* planes, std::size_t pixels,
                 const WidePixels& shape, bool inHalves)
{
    const std::size_t pixelBytes = shape.pixelBytes;
    ForGroups<sampleBytes>(
        pixels, shape, inHalves,
        [=](std::size_t channel, std::size_t first, std::size_t end) {
            SplitPiece<sampleBytes, 16>(row + channel * sampleBytes, planes + channel, first, end,
                                        pixelBytes);
        },
        [=](std::size_t channel, std::size_t first, std::size_t end) {
            SplitPiece<sampleBytes, 8>(row + channel * sampleBytes, planes + channel, first, end,
                                       pixelBytes);
        });
}

template <int sampleBytes>
void MergeGroups(const unsigned char* const* planes, unsigned char* row, std::size_t pixels,
                 const WidePixels& shape, bool inHalves)
{
    const std::size_t pixelBytes = shape.pixelBytes;
    ForGroups<sampleBytes>(
        pixels, shape, inHalves,
        [=](std::size_t channel, std::size_t first, std::size_t end) {
            MergePiece<sampleBytes, 16>(planes + channel, row + channel * sampleBytes, first, end,
                                        pixelBytes);
        },
        [=](std::size_t channel, std::size_t first, std::size_t end) {
            MergePiece<sampleBytes, 8>(planes + channel, row + channel * sampleBytes, first, end,
                                       pixelBytes);
        });
}

// Groups of two bytes a sample are small enough as they are.
template <int sampleBytes>
void SplitWide(const unsigned char* row, unsigned char* const* planes, std::size_t pixels,
               const WidePixels& shape)
{
    if (pixels < groupBlock<sampleBytes>)
        return WideSplitAt(NarrowerKernels(), sampleBytes)(row, planes, pixels, shape);
    const bool inHalves = sampleBytes == 1 && PlanesCollide(planes, shape.channels, pixels);
    SplitGroups<sampleBytes>(row, planes, pixels, shape, inHalves);
}

template <int sampleBytes>
void MergeWide(const unsigned char* const* planes, unsigned char* row, std::size_t pixels,
               const WidePixels& shape)
{
    if (pixels < groupBlock<sampleBytes>)
        return WideMergeAt(NarrowerKernels(), sampleBytes)(planes, row, pixels, shape);
    const bool inHalves = sampleBytes == 1 && PlanesCollide(planes, shape.channels, pixels);
    MergeGroups<sampleBytes>(planes, row, pixels, shape, inHalves);
}

template <int sampleBytes, int channels>
void Split(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    const WidePixels shape = {std::size_t{channels} * sampleBytes, channels};
    if constexpr (channels * sampleBytes > 16) {
        if (pixels < groupBlock<sampleBytes>)
            return SplitShort<KeptSamples<sampleBytes>, channels>(row, planes, pixels);
        return SplitGroups<sampleBytes>(row, planes, pixels, shape, false);
    } else {
        if (PlanesCollide(planes, channels, pixels))
            return SplitGroups<sampleBytes>(row, planes, pixels, shape, true);
        SplitDense<KeptSamples<sampleBytes>, channels>(row, planes, pixels);
    }
}

template <int sampleBytes, int channels>
void Merge(const unsigned char* const* planes, unsigned char* row, std::size_t pixels)
{
    const WidePixels shape = {std::size_t{channels} * sampleBytes, channels};
    if constexpr (channels * sampleBytes > 16) {
        if (pixels < groupBlock<sampleBytes>)
            return MergeShort<sampleBytes, channels>(planes, row, pixels);
        return MergeGroups<sampleBytes>(planes, row, pixels, shape, false);
    } else {
        if (PlanesCollide(planes, channels, pixels))
            return MergeGroups<sampleBytes>(planes, row, pixels, shape, true);
        MergeDense<sampleBytes, channels>(planes, row, pixels);
    }
}

} // namespace
} // namespace zvk::Pelkraft
