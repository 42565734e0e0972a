#pragma once

#include "common/inlining.h"
#include "direct/bit_words.h"
#include "direct/kernels.h"
#include "direct/narrow_words_lanes.h"

// The vector files of the samples share widening, narrowing, packing and its join with a split,
// over the lanes of the file that includes this one. All of it has internal linkage.
namespace zvk::Pelkraft {
namespace {

// Samples of 8 bits in a vector.
constexpr std::size_t laneSamples = std::size_t{16} * laneCount;

// Rows shorter than a block go to these kernels.
inline const SampleKernels& NarrowerKernels()
{
    if constexpr (laneCount == 1)
        return PortableRoad::GetSampleKernels();
    else if constexpr (laneCount == 2)
        return VectorRoad::GetSampleKernels();
    else
        return Avx2Road::GetSampleKernels();
}

// Calls body(x) for every block of at least one, the last one overlapping the one before it.
template <std::size_t block, typename Body>
PELKRAFT_ALWAYS_INLINE inline void ForBlocks(std::size_t count, Body body)
{
    std::size_t x = 0;
    for (; x + block <= count; x += block)
        body(x);
    if (x < count)
        body(count - block);
}

// The same for short bodies, two blocks a turn: a loop of one cycle takes two where its code
// happens to stand badly.
template <std::size_t block, typename Body>
PELKRAFT_ALWAYS_INLINE inline void ForShortBlocks(std::size_t count, Body body)
{
    std::size_t x = 0;
    for (; x + 2 * block <= count; x += 2 * block) {
        body(x);
        body(x + block);
    }
    if (x + block <= count)
        body(x);
    if (count % block != 0)
        body(count - block);
}

// A vector of 8-bit samples, narrowed where they have 2 bytes.
template <int sampleBytes>
Lanes LoadSamples(const unsigned char* samples)
{
    if constexpr (sampleBytes == 1)
        return Load(samples);
    else
        return Gather<8>(
            Pack16(NarrowWords(Load(samples)), NarrowWords(Load(samples + laneSamples))));
}

// The way back, widened where they have 2 bytes.
template <int sampleBytes>
void StoreSamples(unsigned char* samples, Lanes v)
{
    if constexpr (sampleBytes == 1) {
        Store(samples, v);
    } else {
        const Lanes dealt = Deal<8>(v);
        Store(samples, UnpackLow<1>(dealt, dealt));
        Store(samples + laneSamples, UnpackHigh<1>(dealt, dealt));
    }
}

// The rows that are too short for a kernel go on from functions of their own, so that the longer
// ones do not pay for their frames.
PELKRAFT_NEVER_INLINE inline void WidenShort(const unsigned char* source,
                                             unsigned char* destination, std::size_t samples)
{
    NarrowerKernels().widen(source, destination, samples);
}

void Widen(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    if (samples < laneSamples)
        return WidenShort(source, destination, samples);
    ForShortBlocks<laneSamples>(
        samples, [=](std::size_t x) { StoreSamples<2>(destination + 2 * x, Load(source + x)); });
}

PELKRAFT_NEVER_INLINE inline void NarrowShort(const unsigned char* source,
                                              unsigned char* destination, std::size_t samples)
{
    NarrowerKernels().narrow(source, destination, samples);
}

void Narrow(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    if (samples < laneSamples)
        return NarrowShort(source, destination, samples);
    ForShortBlocks<laneSamples>(
        samples, [=](std::size_t x) { Store(destination + x, LoadSamples<2>(source + 2 * x)); });
}

struct alignas(16) LaneBytes
{
    unsigned char bytes[16];
};

// The mask takes the first byte lowest, the packed byte has it highest.
constexpr LaneBytes turnEights{{7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8}};

// A string of bits, its first bit the top bit of the first byte, moved up by so many places.
inline LaneMask MoveUp(LaneMask bits, unsigned places)
{
    constexpr unsigned room = 64 - 8 * sizeof(LaneMask);
    const std::uint64_t string = SwapBytes(bits) >> room << (room + places);
    return static_cast<LaneMask>(SwapBytes(string));
}

inline void StoreBits(unsigned char* bytes, LaneMask bits)
{
    std::memcpy(bytes, &bits, sizeof bits);
}

// Two vectors of samples of 2 bits, neighbours joined: 4 bits to the byte, or 8 the second time.
template <int weight>
Lanes JoinNeighbours(Lanes a, Lanes b)
{
    const Lanes weights = Set16(0x100 + weight);
    return Pack16(MultiplyAdd8(a, weights), MultiplyAdd8(b, weights));
}

// The bytes stand in the first quarter of the vector.
inline Lanes PackPairs(Lanes v)
{
    const Lanes samples = And(v, Set8(3));
    const Lanes halves = JoinNeighbours<4>(samples, samples);
    return Gather<4>(JoinNeighbours<16>(halves, halves));
}

inline void StoreQuarter(unsigned char* bytes, Lanes v)
{
    const __m128i low = GetLane<0>(v);
    if constexpr (laneCount == 4)
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), low);
    else if constexpr (laneCount == 2)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), low);
    else
        _mm_storeu_si32(bytes, low);
}

template <int sampleBytes>
void PackOneBit(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    const Lanes turn = Broadcast(turnEights.bytes);
    std::size_t x = 0;
    for (; x + laneSamples <= samples; x += laneSamples)
        StoreBits(destination + x / 8,
                  LowBits(Shuffle(LoadSamples<sampleBytes>(source + x * sampleBytes), turn)));
    if (x == samples)
        return;
    const std::size_t bytes = (samples + 7) / 8;
    const std::size_t last = samples - laneSamples;
    const LaneMask bits =
        LowBits(Shuffle(LoadSamples<sampleBytes>(source + last * sampleBytes), turn));
    StoreBits(destination + bytes - sizeof(LaneMask),
              MoveUp(bits, static_cast<unsigned>(8 * bytes - samples)));
}

// The samples after the last whole byte, at most 3.
template <int sampleBytes>
unsigned char PackLastPairs(const unsigned char* source, std::size_t samples)
{
    if constexpr (sampleBytes == 1)
        return static_cast<unsigned char>(PackWord<2>(LoadFewLittle(source, samples)));
    std::uint64_t narrowed = 0;
    for (std::size_t k = 0; k < 3; ++k)
        if (k < samples) {
            const auto wide = static_cast<std::uint32_t>(LoadFewLittle(source + 2 * k, 2));
            narrowed |= std::uint64_t{((wide * 65281u >> 16) + 127) >> 8} << (8 * k);
        }
    return static_cast<unsigned char>(PackWord<2>(narrowed));
}

// Four vectors of samples, in the order of the row, to one of packed bytes.
inline Lanes PackFour(Lanes a, Lanes b, Lanes c, Lanes d)
{
    const Lanes mask = Set8(3);
    const Lanes first = JoinNeighbours<4>(And(a, mask), And(b, mask));
    const Lanes second = JoinNeighbours<4>(And(c, mask), And(d, mask));
    return Gather<4>(JoinNeighbours<16>(first, second));
}

template <int sampleBytes>
Lanes PackFourFrom(const unsigned char* source)
{
    constexpr std::size_t step = laneSamples * sampleBytes;
    return PackFour(LoadSamples<sampleBytes>(source), LoadSamples<sampleBytes>(source + step),
                    LoadSamples<sampleBytes>(source + 2 * step),
                    LoadSamples<sampleBytes>(source + 3 * step));
}

template <int sampleBytes>
void PackTwoBits(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    const std::size_t whole = samples / 4 * 4;
    if (whole >= 4 * laneSamples)
        ForBlocks<4 * laneSamples>(whole, [=](std::size_t x) {
            Store(destination + x / 4, PackFourFrom<sampleBytes>(source + x * sampleBytes));
        });
    else
        ForBlocks<laneSamples>(whole, [=](std::size_t x) {
            StoreQuarter(destination + x / 4,
                         PackPairs(LoadSamples<sampleBytes>(source + x * sampleBytes)));
        });
    if (whole < samples)
        destination[whole / 4] =
            PackLastPairs<sampleBytes>(source + whole * sampleBytes, samples - whole);
}

template <int depth, int sampleBytes>
PELKRAFT_NEVER_INLINE void PackShort(const unsigned char* source, unsigned char* destination,
                                     std::size_t samples)
{
    const SampleKernels& narrower = NarrowerKernels();
    (sampleBytes == 1 ? narrower.pack : narrower.narrowPack)[depth - 1](source, destination,
                                                                        samples);
}

template <int depth, int sampleBytes>
void Pack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    if (samples < laneSamples)
        return PackShort<depth, sampleBytes>(source, destination, samples);
    if constexpr (depth == 1)
        PackOneBit<sampleBytes>(source, destination, samples);
    else
        PackTwoBits<sampleBytes>(source, destination, samples);
}

} // namespace
} // namespace zvk::Pelkraft
