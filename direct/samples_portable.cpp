#include "direct/bit_words.h"
#include "direct/kernels.h"

namespace zvk::Pelkraft::PortableRoad {
namespace {

void Widen(const unsigned char* __restrict source, unsigned char* __restrict destination,
           std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const auto wide = static_cast<std::uint16_t>(source[i] * 257);
        std::memcpy(destination + 2 * i, &wide, sizeof wide);
    }
}

void Narrow(const unsigned char* __restrict source, unsigned char* __restrict destination,
            std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::uint16_t wide;
        std::memcpy(&wide, source + 2 * i, sizeof wide);
        const std::uint32_t high = wide * 65281u >> 16;
        destination[i] = static_cast<unsigned char>((high + 127) >> 8);
    }
}

// Packed bytes that are done in a loop of known length, of which compilers make vectors.
constexpr std::size_t packedStrip = 16;

template <int depth>
void PackStrip(const unsigned char* __restrict source, unsigned char* __restrict destination)
{
    constexpr std::size_t perByte = 8 / depth;
    constexpr unsigned mask = (1u << depth) - 1;
    for (std::size_t byte = 0; byte < packedStrip; ++byte) {
        unsigned packed = 0;
        for (std::size_t k = 0; k < perByte; ++k)
            packed |= (source[byte * perByte + k] & mask) << (8 - depth * (k + 1));
        destination[byte] = static_cast<unsigned char>(packed);
    }
}

template <int depth>
void UnpackStrip(const unsigned char* __restrict source, unsigned char* __restrict destination)
{
    constexpr std::size_t perByte = 8 / depth;
    constexpr unsigned mask = (1u << depth) - 1;
    for (std::size_t byte = 0; byte < packedStrip; ++byte)
        for (std::size_t k = 0; k < perByte; ++k)
            destination[byte * perByte + k] =
                static_cast<unsigned char>(source[byte] >> (8 - depth * (k + 1)) & mask);
}

template <int depth>
void Pack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    std::size_t x = 0;
    // A word takes all bits of a sample of 1 bit at once, and no loop is faster.
    if constexpr (depth == 2) {
        constexpr std::size_t strip = packedStrip * 4;
        for (; x + strip <= samples; x += strip, destination += packedStrip)
            PackStrip<depth>(source + x, destination);
    }
    for (; x + 8 <= samples; x += 8, destination += depth)
        StoreFewLittle(destination, depth, PackWord<depth>(LoadLittle(source + x)));
    const std::size_t rest = samples - x;
    StoreFewLittle(destination, (rest * depth + 7) / 8,
                   PackWord<depth>(LoadFewLittle(source + x, rest)));
}

template <int depth>
void Unpack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    constexpr std::size_t strip = packedStrip * 8 / depth;
    std::size_t x = 0;
    for (; x + strip <= samples; x += strip, source += packedStrip)
        UnpackStrip<depth>(source, destination + x);
    for (; x + 8 <= samples; x += 8, source += depth)
        StoreLittle(destination + x, UnpackWord<depth>(LoadFewLittle(source, depth)));
    const std::size_t rest = samples - x;
    StoreFewLittle(destination + x, rest,
                   UnpackWord<depth>(LoadFewLittle(source, (rest * depth + 7) / 8)));
}

template <int depth>
void Mirror(const unsigned char* plane, std::size_t end, unsigned char* destination,
            std::size_t samples)
{
    MirrorWords<depth>(plane, end * depth, destination, samples * depth);
}

// Samples that two steps hand over through the stack; a multiple of 8, so that whole bytes meet.
constexpr std::size_t strip = 512;

template <int depth>
void NarrowPack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    unsigned char narrowed[strip];
    for (std::size_t x = 0; x < samples; x += strip) {
        const std::size_t count = samples - x < strip ? samples - x : strip;
        Narrow(source + 2 * x, narrowed, count);
        Pack<depth>(narrowed, destination + x * depth / 8, count);
    }
}

template <int depth>
void UnpackWiden(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    unsigned char levels[strip];
    for (std::size_t x = 0; x < samples; x += strip) {
        const std::size_t count = samples - x < strip ? samples - x : strip;
        Unpack<depth>(source + x * depth / 8, levels, count);
        Widen(levels, destination + 2 * x, count);
    }
}

// One byte of each plane, from at most 8 / depth pixels.
template <int depth, int channels>
void PackSplitByte(const unsigned char* row, unsigned char* const* planes, std::size_t byte,
                   int pixels)
{
    // Every byte holds one channel and is shifted by no more bits than its mask leaves free.
    constexpr std::uint32_t mask = 0x01010101u * ((1u << depth) - 1);
    std::uint32_t packed = 0;
    for (int k = 0; k < pixels; ++k) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, row + k * channels, channels);
        packed |= (pixel & mask) << (8 - depth * (k + 1));
    }
    unsigned char bytes[4];
    std::memcpy(bytes, &packed, sizeof bytes);
    for (int c = 0; c < channels; ++c)
        planes[c][byte] = bytes[c];
}

template <int depth, int channels>
void PackSplit(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    constexpr int perByte = 8 / depth;
    unsigned char* own[channels];
    for (int c = 0; c < channels; ++c)
        own[c] = planes[c];
    const std::size_t whole = pixels / perByte;
    for (std::size_t byte = 0; byte < whole; ++byte)
        PackSplitByte<depth, channels>(row + byte * perByte * channels, own, byte, perByte);
    if (const auto rest = static_cast<int>(pixels % perByte); rest != 0)
        PackSplitByte<depth, channels>(row + whole * perByte * channels, own, whole, rest);
}

constexpr SampleKernels kernels{
    Widen,
    Narrow,
    {Pack<1>, Pack<2>},
    {Unpack<1>, Unpack<2>},
    {Mirror<1>, Mirror<2>},
    {NarrowPack<1>, NarrowPack<2>},
    {UnpackWiden<1>, UnpackWiden<2>},
    {{nullptr, nullptr, PackSplit<1, 2>, PackSplit<1, 3>, PackSplit<1, 4>},
     {nullptr, nullptr, PackSplit<2, 2>, PackSplit<2, 3>, PackSplit<2, 4>}},
};

} // namespace

const SampleKernels& GetSampleKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::PortableRoad
