#include "direct/pixels_map.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

// Three ways: four channels in another order are moved inside words; other maps of so few channels
// that the split and merge kernels take them are a choice of planes; what is left goes sample by
// sample.
namespace zvk::Pelkraft::PortableRoad {
namespace {

template <typename Value>
Value Get(const unsigned char* bytes)
{
    Value value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

template <typename Value>
void Put(unsigned char* bytes, const Value& value)
{
    std::memcpy(bytes, &value, sizeof value);
}

// An order of four channels has two bits for each of them: the channel that it comes from.
constexpr unsigned orders = 256;

constexpr unsigned ChannelFrom(unsigned order, unsigned channel)
{
    return order >> (2 * channel) & 3;
}

constexpr bool IsPermutation(unsigned order)
{
    unsigned used = 0;
    for (unsigned channel = 0; channel < 4; ++channel)
        used |= 1U << ChannelFrom(order, channel);
    return used == 0xf;
}

// Each byte has all its bits where the channel is kept, or none.
using KeptBytes = std::array<unsigned char, 8>;

constexpr int BitOf(unsigned byte)
{
    return static_cast<int>(8 * (std::endian::native == std::endian::little ? byte : 3 - byte));
}

// The bytes of a pixel that have so many bits to go up, round the word's end.
template <unsigned order, int bits>
constexpr std::uint32_t rotatedBytes = [] {
    std::uint32_t found = 0;
    for (unsigned to = 0; to < 4; ++to)
        if ((BitOf(to) - BitOf(ChannelFrom(order, to)) + 32) % 32 == bits)
            found |= std::uint32_t{0xff} << BitOf(to);
    return found;
}();

template <unsigned order, int bits>
std::uint32_t RotateBytes(std::uint32_t word, std::uint32_t kept)
{
    if constexpr (rotatedBytes<order, bits> == 0)
        return 0;
    else
        return std::rotl(word, bits) & (rotatedBytes<order, bits> & kept);
}

template <unsigned order>
void PermuteBytes(const KeptBytes& keptBytes, const unsigned char* source,
                  unsigned char* destination, std::size_t pixels)
{
    const auto kept = Get<std::uint32_t>(keptBytes.data());
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        const auto word = Get<std::uint32_t>(source + 4 * pixel);
        Put(destination + 4 * pixel,
            RotateBytes<order, 0>(word, kept) | RotateBytes<order, 8>(word, kept) |
                RotateBytes<order, 16>(word, kept) | RotateBytes<order, 24>(word, kept));
    }
}

// A vector of the baseline.
struct TwoPixels
{
    std::uint16_t of[8];
};

template <unsigned order, unsigned... sample>
TwoPixels PermuteTwo(const TwoPixels& pixels, const TwoPixels& kept,
                     std::integer_sequence<unsigned, sample...>)
{
    // cppcheck-suppress constStatement // it is one value for each number of the pack
    return {{static_cast<std::uint16_t>(pixels.of[sample / 4 * 4 + ChannelFrom(order, sample % 4)] &
                                        kept.of[sample])...}};
}

template <unsigned order>
void PermuteWords(const KeptBytes& keptBytes, const unsigned char* source,
                  unsigned char* destination, std::size_t pixels)
{
    constexpr std::size_t pixelBytes = 8;
    TwoPixels kept;
    std::memcpy(kept.of, keptBytes.data(), pixelBytes);
    std::memcpy(kept.of + 4, keptBytes.data(), pixelBytes);
    const auto permute = [=](const TwoPixels& two) {
        return PermuteTwo<order>(two, kept, std::make_integer_sequence<unsigned, 8>{});
    };
    std::size_t pixel = 0;
    for (; pixel + 2 <= pixels; pixel += 2)
        Put(destination + pixel * pixelBytes, permute(Get<TwoPixels>(source + pixel * pixelBytes)));
    if (pixel == pixels)
        return;
    TwoPixels last{};
    std::memcpy(last.of, source + pixel * pixelBytes, pixelBytes);
    last = permute(last);
    std::memcpy(destination + pixel * pixelBytes, last.of, pixelBytes);
}

using PermuteMethod = void (*)(const KeptBytes& kept, const unsigned char* source,
                               unsigned char* destination, std::size_t pixels);

// Null for what is no permutation.
struct PermuteMethods
{
    PermuteMethod bytes;
    PermuteMethod words;
};

template <unsigned order>
constexpr PermuteMethods MethodsOf()
{
    if constexpr (IsPermutation(order))
        return {PermuteBytes<order>, PermuteWords<order>};
    else
        return {nullptr, nullptr};
}

template <unsigned... order>
constexpr std::array<PermuteMethods, orders>
MakePermuteMethods(std::integer_sequence<unsigned, order...>)
{
    return {MethodsOf<order>()...};
}

constexpr auto permuteMethods = MakePermuteMethods(std::make_integer_sequence<unsigned, orders>{});

// Empty channels take what no other channel does. An order that is no permutation where some
// channel is taken twice.
unsigned OrderOf(const PixelStep& step, std::size_t sampleBytes)
{
    unsigned free = 0xf;
    for (std::size_t channel = 0; channel < 4; ++channel)
        if (const unsigned place = step.places[channel * sampleBytes]; place != emptyByte)
            free &= ~(1U << place / sampleBytes);
    unsigned order = 0;
    for (unsigned channel = 0; channel < 4; ++channel) {
        const unsigned place = step.places[channel * sampleBytes];
        auto from = static_cast<unsigned>(place / sampleBytes);
        if (place == emptyByte) {
            from = static_cast<unsigned>(std::countr_zero(free));
            free &= free - 1;
        }
        order |= (from & 3) << (2 * channel);
    }
    return order;
}

// Answers whether it has served the map.
bool PermuteFour(const PixelStep& step, std::size_t sampleBytes, const unsigned char* source,
                 unsigned char* destination, std::size_t pixels)
{
    const PermuteMethods& methods = permuteMethods[OrderOf(step, sampleBytes)];
    if (methods.bytes == nullptr)
        return false;
    KeptBytes kept{};
    for (std::size_t byte = 0; byte < 4 * sampleBytes; ++byte)
        kept[byte] = step.places[byte] == emptyByte ? 0 : 0xff;
    (sampleBytes == 1 ? methods.bytes : methods.words)(kept, source, destination, pixels);
    return true;
}

// Planes of the first-level cache; their distance is no power of two.
constexpr std::size_t planeBytes = 512;
constexpr std::size_t planeStep = planeBytes + 64;
constexpr unsigned char zeros[planeBytes] = {};

void MapThroughPlanes(const PixelStep& step, std::size_t sampleBytes, const unsigned char* source,
                      unsigned char* destination, std::size_t pixels)
{
    const SplitMergeKernels& kernels = GetSplitMergeKernels();
    const std::size_t sourceChannels = step.sourceBytes / sampleBytes;
    const std::size_t channels = step.destinationBytes / sampleBytes;
    unsigned char tile[maxDenseChannels * planeStep];
    unsigned char* planes[maxDenseChannels];
    const unsigned char* chosen[maxDenseChannels];
    for (std::size_t channel = 0; channel < sourceChannels; ++channel)
        planes[channel] = tile + channel * planeStep;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        const std::size_t place = step.places[channel * sampleBytes];
        // cppcheck-suppress uninitvar // a place lies in one of the source channels
        chosen[channel] = place == emptyByte ? zeros : planes[place / sampleBytes];
    }
    const std::size_t tilePixels = planeBytes / sampleBytes;
    for (std::size_t first = 0; first < pixels; first += tilePixels) {
        const std::size_t left = pixels - first;
        const std::size_t count = left < tilePixels ? left : tilePixels;
        kernels.split[sampleBytes - 1][sourceChannels](source + first * step.sourceBytes, planes,
                                                       count);
        kernels.merge[sampleBytes - 1][channels](
            chosen, destination + first * step.destinationBytes, count);
    }
}

// One sample of each pixel.
template <typename Sample>
void MapColumn(const unsigned char* source, std::size_t fromStep, unsigned char* destination,
               std::size_t toStep, std::size_t pixels)
{
    const auto one = [=](std::size_t pixel) {
        Put(destination + pixel * toStep, Get<Sample>(source + pixel * fromStep));
    };
    std::size_t pixel = 0;
    for (; pixel + 4 <= pixels; pixel += 4) {
        one(pixel);
        one(pixel + 1);
        one(pixel + 2);
        one(pixel + 3);
    }
    for (; pixel < pixels; ++pixel)
        one(pixel);
}

template <typename Sample>
void EmptyColumn(unsigned char* destination, std::size_t toStep, std::size_t pixels)
{
    for (std::size_t pixel = 0; pixel < pixels; ++pixel)
        Put(destination + pixel * toStep, Sample{0});
}

// Few enough pixels that their columns stay in the first-level cache.
constexpr std::size_t columnPixels = 128;

template <typename Sample>
void MapByColumns(const PixelStep& step, const unsigned char* source, unsigned char* destination,
                  std::size_t pixels)
{
    for (std::size_t first = 0; first < pixels; first += columnPixels) {
        const std::size_t left = pixels - first;
        const std::size_t count = left < columnPixels ? left : columnPixels;
        const unsigned char* from = source + first * step.sourceBytes;
        for (std::size_t byte = 0; byte < step.destinationBytes; byte += sizeof(Sample)) {
            unsigned char* to = destination + first * step.destinationBytes + byte;
            const std::size_t place = step.places[byte];
            if (place == emptyByte)
                EmptyColumn<Sample>(to, step.destinationBytes, count);
            else
                MapColumn<Sample>(from + place, step.sourceBytes, to, step.destinationBytes, count);
        }
    }
}

// True if whole 16-bit samples are moved.
bool HasWords(const PixelStep& step)
{
    if ((step.sourceBytes | step.destinationBytes) % 2 != 0)
        return false;
    for (std::size_t byte = 0; byte < step.destinationBytes; byte += 2) {
        const unsigned low = step.places[byte];
        const unsigned high = step.places[byte + 1];
        if (low % 2 != 0 || high != (low == emptyByte ? low : low + 1))
            return false;
    }
    return true;
}

} // namespace

void MapPixels(const PixelStep& step, const unsigned char* source, unsigned char* destination,
               std::size_t pixels)
{
    const std::size_t sampleBytes = HasWords(step) ? 2 : 1;
    const std::size_t sourceChannels = step.sourceBytes / sampleBytes;
    const std::size_t channels = step.destinationBytes / sampleBytes;
    const auto areDense = [](std::size_t count) { return 2 <= count && count <= maxDenseChannels; };
    if (sourceChannels == 4 && channels == 4 &&
        PermuteFour(step, sampleBytes, source, destination, pixels))
        return;
    if (areDense(sourceChannels) && areDense(channels))
        MapThroughPlanes(step, sampleBytes, source, destination, pixels);
    else if (sampleBytes == 2)
        MapByColumns<std::uint16_t>(step, source, destination, pixels);
    else
        MapByColumns<std::uint8_t>(step, source, destination, pixels);
}

} // namespace zvk::Pelkraft::PortableRoad
