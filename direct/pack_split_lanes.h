#pragma once

#include "common/inlining.h"
#include "direct/samples_lanes.h"

// An interleaved row of 8-bit samples to one packed plane for each channel, over the lanes of the
// file that includes it.
namespace zvk::Pelkraft {
namespace {

template <int depth, int channels>
void StorePacked(const Lanes* samples, unsigned char* const* planes, std::size_t byte)
{
    for (int c = 0; c < channels; ++c) {
        if constexpr (depth == 1)
            StoreBits(planes[c] + byte, LowBits(samples[c]));
        else
            StoreQuarter(planes[c] + byte, PackPairs(samples[c]));
    }
}

template <typename Splitter>
void PackSplitLastBits(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    constexpr int channels = Splitter::channels;
    const std::size_t bytes = (pixels + 7) / 8;
    Lanes samples[channels];
    Splitter::Split(row + (pixels - laneSamples) * channels, samples);
    for (int c = 0; c < channels; ++c)
        StoreBits(planes[c] + bytes - sizeof(LaneMask),
                  MoveUp(LowBits(samples[c]), static_cast<unsigned>(8 * bytes - pixels)));
}

template <int channels>
void PackSplitLastPairs(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    for (int c = 0; c < channels; ++c) {
        unsigned packed = 0;
        for (std::size_t k = pixels / 4 * 4; k < pixels; ++k)
            packed = packed << 2 | (row[k * channels + static_cast<std::size_t>(c)] & 3u);
        planes[c][pixels / 4] = static_cast<unsigned char>(packed << (8 - 2 * (pixels % 4)));
    }
}

// Four vectors of each channel.
template <typename Splitter>
void PackSplitPairs(const unsigned char* row, unsigned char* const* planes, std::size_t byte)
{
    constexpr int channels = Splitter::channels;
    Lanes samples[channels][4];
    for (std::size_t i = 0; i < 4; ++i) {
        Lanes block[channels];
        Splitter::Split(row + i * laneSamples * channels, block);
        for (int c = 0; c < channels; ++c)
            samples[c][i] = block[c];
    }
    for (int c = 0; c < channels; ++c)
        Store(planes[c] + byte,
              PackFour(samples[c][0], samples[c][1], samples[c][2], samples[c][3]));
}

template <int depth, int channels>
PELKRAFT_NEVER_INLINE void PackSplitShort(const unsigned char* row, unsigned char* const* planes,
                                          std::size_t pixels)
{
    NarrowerKernels().packSplit[depth - 1][channels](row, planes, pixels);
}

// A splitter has the number of channels and puts a vector of samples of each channel in place; for
// depth 1 the samples of each eight in the reverse order.
template <int depth, typename Splitter>
void PackSplit(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    constexpr int channels = Splitter::channels;
    if (pixels < laneSamples)
        return PackSplitShort<depth, channels>(row, planes, pixels);
    unsigned char* own[channels];
    for (int c = 0; c < channels; ++c)
        own[c] = planes[c];
    const auto block = [row, &own](std::size_t x) {
        Lanes samples[channels];
        Splitter::Split(row + x * channels, samples);
        StorePacked<depth, channels>(samples, own, x * depth / 8);
    };
    if constexpr (depth == 1) {
        std::size_t x = 0;
        for (; x + laneSamples <= pixels; x += laneSamples)
            block(x);
        if (x < pixels)
            PackSplitLastBits<Splitter>(row, own, pixels);
    } else {
        const std::size_t whole = pixels / 4 * 4;
        if (whole >= 4 * laneSamples)
            ForBlocks<4 * laneSamples>(whole, [row, &own](std::size_t x) {
                PackSplitPairs<Splitter>(row + x * channels, own, x / 4);
            });
        else
            ForBlocks<laneSamples>(whole, block);
        if (pixels % 4 != 0)
            PackSplitLastPairs<channels>(row, own, pixels);
    }
}

} // namespace
} // namespace zvk::Pelkraft
