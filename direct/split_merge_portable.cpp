#include "direct/kernels.h"

#include <cstring>
#include <type_traits>
#include <utility>

// Pixels are brought to slots of 2, 4, 8 or 16 samples on the stack, which both compilers split and
// merge in vectors: the loops over local arrays of a power of two are written for them.
namespace zvk::Pelkraft {
namespace {

template <int sampleBytes>
using Sample = std::conditional_t<sampleBytes == 1, std::uint8_t, std::uint16_t>;

constexpr int Order(int channels)
{
    return channels <= 2 ? 2 : channels <= 4 ? 4 : channels <= 8 ? 8 : 16;
}

constexpr int tilePixels = 32;

template <int sampleBytes, int order>
struct Tile
{
    alignas(16) Sample<sampleBytes> slots[tilePixels * order];
    alignas(16) Sample<sampleBytes> samples[order][tilePixels];

    void Split()
    {
        for (int pixel = 0; pixel < tilePixels; ++pixel)
            for (int channel = 0; channel < order; ++channel)
                samples[channel][pixel] = slots[pixel * order + channel];
    }

    void Merge()
    {
        for (int pixel = 0; pixel < tilePixels; ++pixel)
            for (int channel = 0; channel < order; ++channel)
                slots[pixel * order + channel] = samples[channel][pixel];
    }
};

// Each copy but the last takes a whole slot: what it takes too much is dropped with the slot.
template <int sampleBytes, int order>
void LoadSlots(const unsigned char* row, std::size_t pixelBytes, std::size_t channels,
               Sample<sampleBytes>* slots)
{
    for (int pixel = 0; pixel < tilePixels - 1; ++pixel)
        std::memcpy(slots + pixel * order, row + static_cast<std::size_t>(pixel) * pixelBytes,
                    sizeof(*slots) * order);
    std::memcpy(slots + (tilePixels - 1) * order, row + (tilePixels - 1) * pixelBytes,
                sizeof(*slots) * channels);
}

// Ascending: what a slot writes too much belongs to the next pixel.
template <int sampleBytes, int order>
void StoreSlots(const Sample<sampleBytes>* slots, std::size_t pixelBytes, std::size_t channels,
                unsigned char* row)
{
    for (int pixel = 0; pixel < tilePixels - 1; ++pixel)
        std::memcpy(row + static_cast<std::size_t>(pixel) * pixelBytes, slots + pixel * order,
                    sizeof(*slots) * order);
    std::memcpy(row + (tilePixels - 1) * pixelBytes, slots + (tilePixels - 1) * order,
                sizeof(*slots) * channels);
}

template <int sampleBytes>
void CopySample(const unsigned char* from, unsigned char* to)
{
    std::memcpy(to, from, sampleBytes);
}

template <int sampleBytes, int channels>
void Split(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    constexpr int order = Order(channels);
    constexpr std::size_t pixelBytes = channels * sampleBytes;
    if (pixels < tilePixels) {
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            for (int channel = 0; channel < channels; ++channel)
                CopySample<sampleBytes>(row + pixel * pixelBytes + channel * sampleBytes,
                                        planes[channel] + pixel * sampleBytes);
        return;
    }
    Tile<sampleBytes, order> tile;
    const std::size_t last = pixels - tilePixels;
    for (std::size_t pixel = 0; pixel < pixels; pixel += tilePixels) {
        const std::size_t at = pixel < last ? pixel : last;
        if constexpr (order == channels)
            std::memcpy(tile.slots, row + at * pixelBytes, sizeof tile.slots);
        else
            LoadSlots<sampleBytes, order>(row + at * pixelBytes, pixelBytes, channels, tile.slots);
        tile.Split();
        for (int channel = 0; channel < channels; ++channel)
            std::memcpy(planes[channel] + at * sampleBytes, tile.samples[channel],
                        sizeof tile.samples[0]);
    }
}

template <int sampleBytes, int channels>
void Merge(const unsigned char* const* planes, unsigned char* row, std::size_t pixels)
{
    constexpr int order = Order(channels);
    constexpr std::size_t pixelBytes = channels * sampleBytes;
    if (pixels < tilePixels) {
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            for (int channel = 0; channel < channels; ++channel)
                CopySample<sampleBytes>(planes[channel] + pixel * sampleBytes,
                                        row + pixel * pixelBytes + channel * sampleBytes);
        return;
    }
    Tile<sampleBytes, order> tile = {};
    const std::size_t last = pixels - tilePixels;
    for (std::size_t pixel = 0; pixel < pixels; pixel += tilePixels) {
        const std::size_t at = pixel < last ? pixel : last;
        for (int channel = 0; channel < channels; ++channel)
            std::memcpy(tile.samples[channel], planes[channel] + at * sampleBytes,
                        sizeof tile.samples[0]);
        tile.Merge();
        if constexpr (order == channels)
            std::memcpy(row + at * pixelBytes, tile.slots, sizeof tile.slots);
        else
            StoreSlots<sampleBytes, order>(tile.slots, pixelBytes, channels, row + at * pixelBytes);
    }
}

constexpr std::size_t groupChannels = 16;

// Groups of channels, of which the last may overlap the one before.
template <int sampleBytes>
void SplitWide(const unsigned char* row, unsigned char* const* planes, std::size_t pixels,
               const WidePixels& shape)
{
    if (pixels < tilePixels) {
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            for (std::size_t channel = 0; channel < shape.channels; ++channel)
                CopySample<sampleBytes>(row + pixel * shape.pixelBytes + channel * sampleBytes,
                                        planes[channel] + pixel * sampleBytes);
        return;
    }
    Tile<sampleBytes, groupChannels> tile;
    const std::size_t last = pixels - tilePixels;
    const std::size_t lastGroup = shape.channels - groupChannels;
    for (std::size_t pixel = 0; pixel < pixels; pixel += tilePixels) {
        const std::size_t at = pixel < last ? pixel : last;
        for (std::size_t first = 0; first < shape.channels; first += groupChannels) {
            const std::size_t group = first < lastGroup ? first : lastGroup;
            LoadSlots<sampleBytes, groupChannels>(row + at * shape.pixelBytes + group * sampleBytes,
                                                  shape.pixelBytes, groupChannels, tile.slots);
            tile.Split();
            for (std::size_t channel = 0; channel < groupChannels; ++channel)
                std::memcpy(planes[group + channel] + at * sampleBytes, tile.samples[channel],
                            sizeof tile.samples[0]);
        }
    }
}

template <int sampleBytes>
void MergeWide(const unsigned char* const* planes, unsigned char* row, std::size_t pixels,
               const WidePixels& shape)
{
    if (pixels < tilePixels) {
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            for (std::size_t channel = 0; channel < shape.channels; ++channel)
                CopySample<sampleBytes>(planes[channel] + pixel * sampleBytes,
                                        row + pixel * shape.pixelBytes + channel * sampleBytes);
        return;
    }
    Tile<sampleBytes, groupChannels> tile;
    const std::size_t last = pixels - tilePixels;
    const std::size_t lastGroup = shape.channels - groupChannels;
    for (std::size_t pixel = 0; pixel < pixels; pixel += tilePixels) {
        const std::size_t at = pixel < last ? pixel : last;
        for (std::size_t first = 0; first < shape.channels; first += groupChannels) {
            const std::size_t group = first < lastGroup ? first : lastGroup;
            for (std::size_t channel = 0; channel < groupChannels; ++channel)
                std::memcpy(tile.samples[channel], planes[group + channel] + at * sampleBytes,
                            sizeof tile.samples[0]);
            tile.Merge();
            StoreSlots<sampleBytes, groupChannels>(tile.slots, shape.pixelBytes, groupChannels,
                                                   row + at * shape.pixelBytes +
                                                       group * sampleBytes);
        }
    }
}

template <int... index>
constexpr SplitMergeKernels MakeKernels(std::integer_sequence<int, index...>)
{
    return {.split = {{{nullptr, nullptr, Split<1, index + 2>...},
                       {nullptr, nullptr, Split<2, index + 2>...}}},
            .merge = {{{nullptr, nullptr, Merge<1, index + 2>...},
                       {nullptr, nullptr, Merge<2, index + 2>...}}},
            .wideSplit = {SplitWide<1>, SplitWide<2>},
            .wideMerge = {MergeWide<1>, MergeWide<2>}};
}

constexpr SplitMergeKernels kernels = MakeKernels(std::make_integer_sequence<int, 15>());

} // namespace

const SplitMergeKernels& PortableRoad::GetSplitMergeKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft
