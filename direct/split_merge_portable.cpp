#include "common/inlining.h"
#include "direct/kernels.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

// The loops name each plane as a parameter of its own, which no other pointer reaches: so compilers
// need not ask whether the planes overlap, and do 2, 4, 8 and 16 channels in vectors.
namespace zvk::Pelkraft {
namespace {

template <int channel>
using Plane = unsigned char;
template <int channel>
using SourcePlane = const unsigned char;

template <int sampleBytes>
inline void CopySample(const unsigned char* from, unsigned char* to)
{
    std::memcpy(to, from, sampleBytes);
}

// With an even number of channels, each sample is one half of the word that it shares with its
// neighbour: so both compilers sort 2 and 4 of them in vectors.
template <int channels, int channel>
inline std::uint16_t PickByte(const unsigned char* pixel)
{
    if constexpr (channels % 2 != 0) {
        return pixel[channel];
    } else {
        constexpr bool isLittle = std::endian::native == std::endian::little;
        std::uint16_t pair;
        std::memcpy(&pair, pixel + std::ptrdiff_t{channel} / 2 * 2, sizeof pair);
        return static_cast<std::uint16_t>((channel % 2 == 0) == isLittle ? pair & 0xff : pair >> 8);
    }
}

inline void StoreWidened(unsigned char* to, std::uint16_t sample)
{
    const auto wide = static_cast<std::uint16_t>(sample | sample << 8);
    std::memcpy(to, &wide, sizeof wide);
}

template <int... channel>
inline void SplitWidenRow(const unsigned char* __restrict row, std::size_t pixels,
                          Plane<channel>* __restrict... planes)
{
    constexpr int channels = sizeof...(channel);
    for (std::size_t pixel = 0; pixel < pixels; ++pixel)
        (StoreWidened(planes + pixel * 2, PickByte<channels, channel>(row + pixel * channels)),
         ...);
}

template <int... channel>
inline void SplitBytesRow(const unsigned char* __restrict row, std::size_t pixels,
                          Plane<channel>* __restrict... planes)
{
    constexpr int channels = sizeof...(channel);
    for (std::size_t pixel = 0; pixel < pixels; ++pixel)
        ((planes[pixel] =
              static_cast<unsigned char>(PickByte<channels, channel>(row + pixel * channels))),
         ...);
}

inline void NarrowRow(const unsigned char* __restrict row, std::size_t samples,
                      unsigned char* __restrict narrowed)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::uint16_t wide;
        std::memcpy(&wide, row + 2 * i, sizeof wide);
        narrowed[i] = static_cast<unsigned char>(((wide * 65281u >> 16) + 127) >> 8);
    }
}

template <int sampleBytes, int... channel>
inline void SplitRow(const unsigned char* __restrict row, std::size_t pixels,
                     std::size_t pixelBytes, Plane<channel>* __restrict... planes)
{
    for (std::size_t pixel = 0; pixel < pixels; ++pixel)
        (CopySample<sampleBytes>(row + pixel * pixelBytes + std::ptrdiff_t{channel} * sampleBytes,
                                 planes + pixel * sampleBytes),
         ...);
}

template <int sampleBytes, int... channel>
inline void MergeRow(unsigned char* __restrict row, std::size_t pixels, std::size_t pixelBytes,
                     SourcePlane<channel>*... planes)
{
    for (std::size_t pixel = 0; pixel < pixels; ++pixel)
        (CopySample<sampleBytes>(planes + pixel * sampleBytes,
                                 row + pixel * pixelBytes + std::ptrdiff_t{channel} * sampleBytes),
         ...);
}

// A power of two at or above the channel count.
constexpr int Order(int channels)
{
    return channels <= 2 ? 2 : channels <= 4 ? 4 : channels <= 8 ? 8 : 16;
}

template <typename Channels>
struct Loops;

template <int channels>
using LoopsOf = Loops<std::make_integer_sequence<int, channels>>;

template <int... channel>
struct Loops<std::integer_sequence<int, channel...>>
{
    static constexpr int channels = sizeof...(channel);

    template <int sampleBytes>
    static void Split(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
    {
        SplitRow<sampleBytes, channel...>(row, pixels, channels * sampleBytes, planes[channel]...);
    }

    static void SplitWiden(const unsigned char* row, unsigned char* const* planes,
                           std::size_t pixels)
    {
        SplitWidenRow<channel...>(row, pixels, planes[channel]...);
    }

    // Narrowed as a run and then split: a loop that does both sorts samples of twice the size.
    static void NarrowSplit(const unsigned char* row, unsigned char* const* planes,
                            std::size_t pixels)
    {
        constexpr std::size_t tilePixels = 64;
        unsigned char narrowed[tilePixels * channels];
        for (std::size_t first = 0; first < pixels; first += tilePixels) {
            const std::size_t count = pixels - first < tilePixels ? pixels - first : tilePixels;
            NarrowRow(row + first * channels * 2, count * channels, narrowed);
            SplitBytesRow<channel...>(narrowed, count, planes[channel] + first...);
        }
    }

    template <int sampleBytes>
    static void Merge(const unsigned char* const* planes, unsigned char* row, std::size_t pixels)
    {
        constexpr int order = Order(channels);
        // In a short row the padding costs more than it gains.
        constexpr std::size_t padPixels = 32;
        if (order != channels && pixels >= padPixels)
            LoopsOf<order>::template MergePadded<sampleBytes, channels>(planes, row, pixels);
        else
            MergeRow<sampleBytes, channel...>(row, pixels, channels * sampleBytes,
                                              planes[channel]...);
    }

    // The last channel fills the slots of those that are missing: each pixel is stored with that
    // filling, and the next pixel over it.
    template <int sampleBytes, int named>
    PELKRAFT_NEVER_INLINE static void MergePadded(const unsigned char* const* planes,
                                                  unsigned char* row, std::size_t pixels)
    {
        constexpr std::size_t slotBytes = std::size_t{channels} * sampleBytes;
        constexpr std::size_t pixelBytes = std::size_t{named} * sampleBytes;
        constexpr std::size_t tilePixels = 64;
        unsigned char slots[tilePixels * slotBytes];
        for (std::size_t first = 0; first < pixels; first += tilePixels) {
            const std::size_t count = pixels - first < tilePixels ? pixels - first : tilePixels;
            MergeRow<sampleBytes, channel...>(slots, count, slotBytes,
                                              planes[channel < named ? channel : named - 1] +
                                                  first * sampleBytes...);
            const bool isEnd = first + count == pixels;
            unsigned char* to = row + first * pixelBytes;
            for (std::size_t pixel = 0; pixel + isEnd < count; ++pixel)
                std::memcpy(to + pixel * pixelBytes, slots + pixel * slotBytes, slotBytes);
            if (isEnd)
                std::memcpy(to + (count - 1) * pixelBytes, slots + (count - 1) * slotBytes,
                            pixelBytes);
        }
    }

    // Groups of channels, of which the last may overlap the one before.
    template <int sampleBytes>
    static void SplitWide(const unsigned char* row, unsigned char* const* planes,
                          std::size_t pixels, const WidePixels& shape)
    {
        for (std::size_t next = 0; next < shape.channels; next += channels) {
            const std::size_t first = GroupAt(next, shape.channels);
            SplitRow<sampleBytes, channel...>(row + first * sampleBytes, pixels, shape.pixelBytes,
                                              planes[first + channel]...);
        }
    }

    template <int sampleBytes>
    static void MergeWide(const unsigned char* const* planes, unsigned char* row,
                          std::size_t pixels, const WidePixels& shape)
    {
        for (std::size_t next = 0; next < shape.channels; next += channels) {
            const std::size_t first = GroupAt(next, shape.channels);
            MergeRow<sampleBytes, channel...>(row + first * sampleBytes, pixels, shape.pixelBytes,
                                              planes[first + channel]...);
        }
    }

    static std::size_t GroupAt(std::size_t next, std::size_t all)
    {
        return next + channels <= all ? next : all - channels;
    }
};

using GroupLoops = LoopsOf<8>;

template <int... index>
constexpr SplitMergeKernels MakeKernels(std::integer_sequence<int, index...>)
{
    return {.split = {{{nullptr, nullptr, LoopsOf<index + 2>::template Split<1>...},
                       {nullptr, nullptr, LoopsOf<index + 2>::template Split<2>...}}},
            .merge = {{{nullptr, nullptr, LoopsOf<index + 2>::template Merge<1>...},
                       {nullptr, nullptr, LoopsOf<index + 2>::template Merge<2>...}}},
            .wideSplit = {GroupLoops::SplitWide<1>, GroupLoops::SplitWide<2>},
            .wideMerge = {GroupLoops::MergeWide<1>, GroupLoops::MergeWide<2>},
            .splitWiden = {nullptr, nullptr, LoopsOf<2>::SplitWiden, LoopsOf<3>::SplitWiden,
                           LoopsOf<4>::SplitWiden},
            .narrowSplit = {nullptr, nullptr, LoopsOf<2>::NarrowSplit, LoopsOf<3>::NarrowSplit,
                            LoopsOf<4>::NarrowSplit}};
}

constexpr SplitMergeKernels kernels = MakeKernels(std::make_integer_sequence<int, 15>());

} // namespace

const SplitMergeKernels& PortableRoad::GetSplitMergeKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft
