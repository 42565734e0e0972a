#include "common/inlining.h"
#include "direct/bit_words.h"
#include "direct/kernels.h"

namespace zvk::Pelkraft::PortableRoad {
namespace {

void Widen(const unsigned char* __restrict source, unsigned char* __restrict destination,
           std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): all is unpacked.
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

// Long rows go in strips of so many packed bytes: compilers make vectors of loops whose length they
// know. Passes that each halve or double a byte's bits give the better ones, but for pairs
// unpacked; in a short strip they would be unrolled instead.
constexpr std::size_t longStrip = 32;
constexpr std::size_t shortStrip = 16;

// The low bits of two neighbours to one byte.
template <int bits>
void JoinBytes(const unsigned char* __restrict source, unsigned char* __restrict destination,
               std::size_t pairs)
{
    constexpr unsigned mask = (1u << bits) - 1;
    for (std::size_t i = 0; i < pairs; ++i)
        destination[i] =
            static_cast<unsigned char>((source[2 * i] & mask) << bits | (source[2 * i + 1] & mask));
}

// A byte's two halves, of so many bits each.
template <int bits>
void HalveBytes(const unsigned char* __restrict source, unsigned char* __restrict destination,
                std::size_t pairs)
{
    constexpr unsigned mask = (1u << bits) - 1;
    for (std::size_t i = 0; i < pairs; ++i) {
        destination[2 * i] = static_cast<unsigned char>(source[i] >> bits);
        destination[2 * i + 1] = static_cast<unsigned char>(source[i] & mask);
    }
}

template <int depth>
void PackLongStrip(const unsigned char* source, unsigned char* destination)
{
    unsigned char halves[2 * longStrip];
    if constexpr (depth == 1) {
        unsigned char quarters[4 * longStrip];
        JoinBytes<1>(source, quarters, 4 * longStrip);
        JoinBytes<2>(quarters, halves, 2 * longStrip);
    } else {
        JoinBytes<2>(source, halves, 2 * longStrip);
    }
    JoinBytes<4>(halves, destination, longStrip);
}

void UnpackBitStrip(const unsigned char* source, unsigned char* destination)
{
    unsigned char halves[2 * longStrip];
    unsigned char quarters[4 * longStrip];
    HalveBytes<4>(source, halves, longStrip);
    HalveBytes<2>(halves, quarters, 2 * longStrip);
    HalveBytes<1>(quarters, destination, 4 * longStrip);
}

// This one and the next are not inlined: they would lose what __restrict says and stay scalar.
PELKRAFT_NEVER_INLINE void PackPairStrip(const unsigned char* __restrict source,
                                         unsigned char* __restrict destination)
{
    for (std::size_t i = 0; i < shortStrip; ++i) {
        unsigned packed = 0;
        for (std::size_t k = 0; k < 4; ++k)
            packed |= (source[4 * i + k] & 3u) << (6 - 2 * k);
        destination[i] = static_cast<unsigned char>(packed);
    }
}

PELKRAFT_NEVER_INLINE void UnpackPairStrip(const unsigned char* __restrict source,
                                           unsigned char* __restrict destination)
{
    for (std::size_t i = 0; i < shortStrip; ++i) {
        destination[4 * i] = static_cast<unsigned char>(source[i] >> 6);
        destination[4 * i + 1] = static_cast<unsigned char>(source[i] >> 4 & 3);
        destination[4 * i + 2] = static_cast<unsigned char>(source[i] >> 2 & 3);
        destination[4 * i + 3] = static_cast<unsigned char>(source[i] & 3);
    }
}

// Calls strip(x) for every strip, the last one overlapping the one before it, or answers that there
// is none in the row.
template <std::size_t length, typename Strip>
bool HasStrips(std::size_t bytes, Strip strip)
{
    if (bytes < length)
        return false;
    std::size_t x = 0;
    for (; x + length <= bytes; x += length)
        strip(x);
    if (x < bytes)
        strip(bytes - length);
    return true;
}

template <int depth>
bool PackStrips(const unsigned char* source, unsigned char* destination, std::size_t bytes)
{
    const auto longOne = [=](std::size_t x) {
        PackLongStrip<depth>(source + x * 8 / depth, destination + x);
    };
    if (HasStrips<longStrip>(bytes, longOne))
        return true;
    const auto pairs = [=](std::size_t x) { PackPairStrip(source + 4 * x, destination + x); };
    return depth == 2 && HasStrips<shortStrip>(bytes, pairs);
}

template <int depth>
bool UnpackStrips(const unsigned char* source, unsigned char* destination, std::size_t bytes)
{
    if constexpr (depth == 1)
        return HasStrips<longStrip>(
            bytes, [=](std::size_t x) { UnpackBitStrip(source + x, destination + 8 * x); });
    else
        return HasStrips<shortStrip>(
            bytes, [=](std::size_t x) { UnpackPairStrip(source + x, destination + 4 * x); });
}

template <int depth>
void Pack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    constexpr std::size_t perByte = 8 / depth;
    const std::size_t whole = samples / 8 * depth;
    if (!PackStrips<depth>(source, destination, whole))
        for (std::size_t x = 0; x < whole; x += depth)
            StoreFewLittle(destination + x, depth,
                           PackWord<depth>(LoadLittle(source + x * perByte)));
    const std::size_t rest = samples % 8;
    StoreFewLittle(destination + whole, (rest * depth + 7) / 8,
                   PackWord<depth>(LoadFewLittle(source + whole * perByte, rest)));
}

template <int depth>
void Unpack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    constexpr std::size_t perByte = 8 / depth;
    const std::size_t whole = samples / 8 * depth;
    if (!UnpackStrips<depth>(source, destination, whole))
        for (std::size_t x = 0; x < whole; x += depth)
            StoreLittle(destination + x * perByte,
                        UnpackWord<depth>(LoadFewLittle(source + x, depth)));
    const std::size_t rest = samples % 8;
    StoreFewLittle(destination + whole * perByte, rest,
                   UnpackWord<depth>(LoadFewLittle(source + whole, (rest * depth + 7) / 8)));
}

template <int depth>
void Mirror(const unsigned char* plane, std::size_t end, unsigned char* destination,
            std::size_t samples)
{
    MirrorWords<depth>(plane, end * depth, destination, samples * depth);
}

// Samples that two steps hand over through the stack; a multiple of 8, so that whole bytes meet.
constexpr std::size_t stripSamples = 512;

template <int depth>
void NarrowPack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    unsigned char narrowed[stripSamples];
    for (std::size_t x = 0; x < samples; x += stripSamples) {
        const std::size_t count = samples - x < stripSamples ? samples - x : stripSamples;
        Narrow(source + 2 * x, narrowed, count);
        Pack<depth>(narrowed, destination + x * depth / 8, count);
    }
}

template <int depth>
void UnpackWiden(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    unsigned char levels[stripSamples];
    for (std::size_t x = 0; x < samples; x += stripSamples) {
        const std::size_t count = samples - x < stripSamples ? samples - x : stripSamples;
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
        const auto pixel =
            static_cast<std::uint32_t>(LoadFewLittle(row + std::ptrdiff_t{k} * channels, channels));
        packed |= (pixel & mask) << (8 - depth * (k + 1));
    }
    for (int c = 0; c < channels; ++c)
        planes[c][byte] = static_cast<unsigned char>(packed >> (8 * c));
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

template <unsigned top>
void Quantize(const unsigned char* __restrict source, unsigned char* __restrict destination,
              std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        destination[i] = static_cast<unsigned char>((source[i] * top + 127) / 255);
}

template <unsigned top>
void Stretch(const unsigned char* __restrict source, unsigned char* __restrict destination,
             std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        destination[i] = static_cast<unsigned char>(source[i] * (255 / top));
}

void Cut(const unsigned char* __restrict source, unsigned char* __restrict destination,
         std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        std::uint16_t wide;
        std::memcpy(&wide, source + 2 * i, sizeof wide);
        destination[i] = static_cast<unsigned char>(wide);
    }
}

void Extend(const unsigned char* __restrict source, unsigned char* __restrict destination,
            std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const std::uint16_t wide = source[i];
        std::memcpy(destination + 2 * i, &wide, sizeof wide);
    }
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
    {Quantize<1>, Quantize<3>},
    {Stretch<1>, Stretch<3>},
    Cut,
    Extend,
};

} // namespace

const SampleKernels& GetSampleKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::PortableRoad
