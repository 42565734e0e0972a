#include "benchmarks/peers/entry.h"
#include "benchmarks/peers/pattern_job.h"

#include <cstdint>

// The loops that a caller would write by hand, left to the compiler and its baseline.
namespace zvk::Pelkraft::Benchmarks {
namespace {

// The rows neither overlap nor alias, which a caller would say too.
using Loop = void (*)(const unsigned char* source, unsigned char* destination, std::size_t pixels);

template <typename Sample>
const Sample* SamplesOf(const unsigned char* row)
{
    return reinterpret_cast<const Sample*>(row);
}

template <typename Sample>
Sample* SamplesOf(unsigned char* row)
{
    return reinterpret_cast<Sample*>(row);
}

template <typename To, typename From>
To ChangeDepth(From sample)
{
    if constexpr (sizeof(To) > sizeof(From))
        return static_cast<To>(sample * 257U);
    else if constexpr (sizeof(To) < sizeof(From))
        return static_cast<To>(((sample * 65281U >> 16) + 127U) >> 8);
    else
        return sample;
}

template <std::size_t channels, typename From, typename To>
void Split(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const From* __restrict from = SamplesOf<From>(source);
    To* __restrict to = SamplesOf<To>(destination);
    for (std::size_t x = 0; x != pixels; ++x)
        for (std::size_t c = 0; c != channels; ++c)
            to[c * pixels + x] = ChangeDepth<To>(from[x * channels + c]);
}

template <std::size_t channels, typename Sample>
void Merge(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const Sample* __restrict from = SamplesOf<Sample>(source);
    Sample* __restrict to = SamplesOf<Sample>(destination);
    for (std::size_t x = 0; x != pixels; ++x)
        for (std::size_t c = 0; c != channels; ++c)
            to[x * channels + c] = from[c * pixels + x];
}

// A copy too, where both samples are of one size.
template <std::size_t channels, typename From, typename To>
void ChangeDepths(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const From* __restrict from = SamplesOf<From>(source);
    To* __restrict to = SamplesOf<To>(destination);
    for (std::size_t i = 0; i != pixels * channels; ++i)
        to[i] = ChangeDepth<To>(from[i]);
}

template <std::size_t channels, std::size_t bits, bool planar>
void Pack(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    constexpr std::size_t perByte = 8 / bits;
    constexpr std::size_t step = planar ? 1 : channels;
    for (std::size_t c = 0; c != channels; ++c) {
        const unsigned char* __restrict from = source + (planar ? c * pixels : c);
        unsigned char* __restrict to = destination + c * ((pixels * bits + 7) / 8);
        for (std::size_t x = 0; x < pixels; x += perByte) {
            unsigned byte = 0;
            for (std::size_t k = 0; k != perByte && x + k != pixels; ++k)
                byte |= (from[(x + k) * step] % (1U << bits)) << (8 - bits - bits * k);
            to[x / perByte] = static_cast<unsigned char>(byte);
        }
    }
}

template <std::size_t channels, bool planar>
void UnpackBits(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    constexpr std::size_t step = planar ? 1 : channels;
    for (std::size_t c = 0; c != channels; ++c) {
        const unsigned char* __restrict from = source + c * ((pixels + 7) / 8);
        unsigned char* __restrict to = destination + (planar ? c * pixels : c);
        for (std::size_t x = 0; x != pixels; ++x)
            to[x * step] = static_cast<unsigned char>((from[x / 8] >> (7 - x % 8)) & 1);
    }
}

template <typename Sample>
void SwapFirstAndThird(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const Sample* __restrict from = SamplesOf<Sample>(source);
    Sample* __restrict to = SamplesOf<Sample>(destination);
    for (std::size_t x = 0; x != pixels; ++x) {
        to[4 * x] = from[4 * x + 2];
        to[4 * x + 1] = from[4 * x + 1];
        to[4 * x + 2] = from[4 * x];
        to[4 * x + 3] = from[4 * x + 3];
    }
}

void PutFourAmongSix(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const unsigned char* __restrict from = source;
    unsigned char* __restrict to = destination;
    for (std::size_t x = 0; x != pixels; ++x) {
        to[6 * x] = from[4 * x + 3];
        to[6 * x + 1] = 0;
        to[6 * x + 2] = from[4 * x];
        to[6 * x + 3] = from[4 * x + 1];
        to[6 * x + 4] = 0;
        to[6 * x + 5] = from[4 * x + 2];
    }
}

void Mirror(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const unsigned char* __restrict from = source;
    unsigned char* __restrict to = destination;
    for (std::size_t x = 0; x != pixels; ++x)
        for (std::size_t c = 0; c != 4; ++c)
            to[4 * x + c] = from[4 * (pixels - 1 - x) + c];
}

void MirrorBits(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const std::size_t planeBytes = (pixels + 7) / 8;
    for (std::size_t c = 0; c != 4; ++c) {
        const unsigned char* __restrict from = source + c * planeBytes;
        unsigned char* __restrict to = destination + c * planeBytes;
        for (std::size_t x = 0; x < pixels; x += 8) {
            unsigned byte = 0;
            for (std::size_t k = 0; k != 8 && x + k != pixels; ++k) {
                const std::size_t y = pixels - 1 - x - k;
                byte |= ((static_cast<unsigned>(from[y / 8]) >> (7 - y % 8)) & 1U) << (7 - k);
            }
            to[x / 8] = static_cast<unsigned char>(byte);
        }
    }
}

// Planes are repeated as one row of pixels of one sample.
template <std::size_t samples, std::size_t factor>
void Repeat(const unsigned char* source, unsigned char* destination, std::size_t pixels)
{
    const unsigned char* __restrict from = source;
    unsigned char* __restrict to = destination;
    const std::size_t count = samples == 1 ? 4 * pixels : pixels;
    for (std::size_t x = 0; x != count; ++x)
        for (std::size_t f = 0; f != factor; ++f)
            for (std::size_t c = 0; c != samples; ++c)
                to[(factor * x + f) * samples + c] = from[samples * x + c];
}

struct NamedLoop
{
    const char* job;
    Loop loop;
};

using std::uint16_t;
using std::uint8_t;

constexpr NamedLoop loops[] = {
    {"split_4x8", Split<4, uint8_t, uint8_t>},
    {"merge_4x8", Merge<4, uint8_t>},
    {"widen_4x8", ChangeDepths<4, uint8_t, uint16_t>},
    {"narrow_4x16", ChangeDepths<4, uint16_t, uint8_t>},
    {"pack_4x8", Pack<4, 1, false>},
    {"remap_4x8", SwapFirstAndThird<uint8_t>},
    {"mirror_4x8", Mirror},
    {"repeat2_4x8", Repeat<4, 2>},
    {"copy_4x8", ChangeDepths<4, uint8_t, uint8_t>},
    {"split_3x8", Split<3, uint8_t, uint8_t>},
    {"merge_3x8", Merge<3, uint8_t>},
    {"split_8x8", Split<8, uint8_t, uint8_t>},
    {"merge_8x8", Merge<8, uint8_t>},
    {"split_4x16", Split<4, uint16_t, uint16_t>},
    {"merge_4x16", Merge<4, uint16_t>},
    {"split_widen_4x8", Split<4, uint8_t, uint16_t>},
    {"split_narrow_4x16", Split<4, uint16_t, uint8_t>},
    {"pack_planes_4x8", Pack<4, 1, true>},
    {"pack_planes_4x8_to_2", Pack<4, 2, true>},
    {"unpack_planes_4x1", UnpackBits<4, true>},
    {"unpack_4x1", UnpackBits<4, false>},
    {"remap_4x8_to_6x8", PutFourAmongSix},
    {"remap_4x16", SwapFirstAndThird<uint16_t>},
    {"repeat4_4x8", Repeat<4, 4>},
    {"repeat2_planes_4x8", Repeat<1, 2>},
    {"mirror_planes_4x1", MirrorBits},
};

} // namespace

void AddPlainLoop(Entries& entries, const Job& job)
{
    if (job.operation == Operation::Pattern)
        AddPlainPattern(entries);
    for (const NamedLoop& named : loops)
        if (IsCalled(job, named.job))
            entries.push_back({"plain_loop", [loop = named.loop](int width) -> RowCall {
                                   return [=](const unsigned char* source,
                                              unsigned char* destination) {
                                       loop(source, destination, static_cast<std::size_t>(width));
                                   };
                               }});
}

} // namespace zvk::Pelkraft::Benchmarks
