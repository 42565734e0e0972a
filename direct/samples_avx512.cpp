#include "common/inlining.h"
#include "common/lanes_avx512.h"

#include "direct/kernels.h"
#include "direct/samples_lanes.h"

namespace zvk::Pelkraft {
namespace {

struct alignas(64) VectorBytes
{
    unsigned char bytes[64];
};

// The byte table of 7 bits: the top bit of the index comes from elsewhere.
template <int depth>
struct Turned
{
    VectorBytes low;
    VectorBytes high;
};

template <int depth>
constexpr Turned<depth> MakeTurned()
{
    Turned<depth> turned{};
    for (int v = 0; v < 128; ++v) {
        int sum = 0;
        for (int bit = 0; bit < 8; ++bit)
            if ((v >> bit & 1) != 0)
                sum |= 1 << (depth == 1 ? 7 - bit : (6 - bit / 2 * 2) + bit % 2);
        (v < 64 ? turned.low : turned.high).bytes[v % 64] = static_cast<unsigned char>(sum);
    }
    return turned;
}

constexpr VectorBytes MakeBackwards()
{
    VectorBytes order{};
    for (int i = 0; i < 64; ++i)
        order.bytes[i] = static_cast<unsigned char>(63 - i);
    return order;
}

template <int depth>
constexpr Turned<depth> turned = MakeTurned<depth>();
constexpr VectorBytes backwards = MakeBackwards();

// A lookup takes 7 bits of each byte; the top bit of a byte follows by a shift.
template <int depth>
Lanes TurnBytesOf(Lanes bytes)
{
    const Lanes most = _mm512_permutex2var_epi8(Load(turned<depth>.low.bytes), bytes,
                                                Load(turned<depth>.high.bytes));
    return Or(most, And(ShiftRight16<8 - depth>(bytes), Set8(depth)));
}

template <int depth>
Lanes TurnVector(Lanes v)
{
    return TurnBytesOf<depth>(_mm512_maskz_permutexvar_epi8(all64, Load(backwards.bytes), v));
}

// The first bytes, from 1 to 64.
inline __mmask64 FirstBytes(std::size_t count)
{
    return all64 >> (64 - count);
}

// Rows of less than a vector. The row's first byte stands first in the vector, as a byte that is
// masked off before it could lie in a page that is not there, which costs more than the whole row.
template <int depth>
PELKRAFT_NEVER_INLINE void MirrorShort(const unsigned char* plane, std::size_t end,
                                       unsigned char* destination, std::size_t samples)
{
    const std::size_t bits = samples * depth;
    const std::size_t endBit = end * depth;
    const std::size_t firstByte = (endBit - bits) / 8;
    const std::size_t sourceBytes = (endBit + 7) / 8 - firstByte;
    if (bits == 0 || sourceBytes > 64)
        return MirrorWords<depth>(plane, endBit, destination, bits);
    const int shift = static_cast<int>(endBit % 8);
    const int wholeBytes = static_cast<int>(endBit / 8 - firstByte);
    const Lanes row = _mm512_maskz_loadu_epi8(FirstBytes(sourceBytes), plane + firstByte);
    // Destination byte x joins source bytes wholeBytes - 1 - x and, of a shifted row, the next one.
    const Lanes next = _mm512_add_epi8(Load(backwards.bytes), Set8(wholeBytes - 63));
    const Lanes first = _mm512_sub_epi8(next, Set8(1));
    const Lanes high = And(ShiftLeft16By(_mm512_maskz_permutexvar_epi8(all64, first, row), shift),
                           Set8(0xff << shift & 0xff));
    const Lanes low =
        And(ShiftRight16By(_mm512_maskz_permutexvar_epi8(all64, next, row), 8 - shift),
            Set8(0xff >> (8 - shift)));
    const std::size_t bytes = (bits + 7) / 8;
    const auto unusedBits = static_cast<int>(8 * bytes - bits);
    const Lanes all = TurnBytesOf<depth>(Or(high, low));
    const __mmask64 last = FirstBytes(bytes) & ~(FirstBytes(bytes) >> 1);
    const Lanes cut = _mm512_mask_blend_epi8(last, all, And(all, Set8(0xff << unusedBits & 0xff)));
    _mm512_mask_storeu_epi8(destination, FirstBytes(bytes), cut);
}

// The place of the first bit of each sample among 64 packed bits.
template <int depth>
constexpr VectorBytes MakeBitPlaces()
{
    VectorBytes places{};
    for (int i = 0; i < 64; ++i) {
        const int first = i * depth % 64;
        places.bytes[i] = static_cast<unsigned char>(first / 8 * 8 + 8 - depth - first % 8);
    }
    return places;
}

template <int depth>
constexpr VectorBytes bitPlaces = MakeBitPlaces<depth>();

// 8 * depth bytes, so that each 8 bytes of the vector have the word with their samples.
template <int depth>
Lanes LoadPackedWords(const unsigned char* source)
{
    if constexpr (depth == 1) {
        long long word;
        std::memcpy(&word, source, sizeof word);
        return _mm512_set1_epi64(word);
    } else {
        const Lanes words = _mm512_castsi128_si512(LoadUnit(source));
        return _mm512_maskz_permutexvar_epi64(all8, _mm512_setr_epi64(0, 0, 0, 0, 1, 1, 1, 1),
                                              words);
    }
}

template <int depth>
constexpr std::size_t unpackBlock = 64;

template <int depth>
Lanes UnpackVector(const unsigned char* source)
{
    const Lanes spread = _mm512_maskz_multishift_epi64_epi8(all64, Load(bitPlaces<depth>.bytes),
                                                            LoadPackedWords<depth>(source));
    return And(spread, Set8((1 << depth) - 1));
}

template <int depth, int sampleBytes>
void UnpackBlock(const unsigned char* source, unsigned char* destination)
{
    StoreSamples<sampleBytes>(destination, UnpackVector<depth>(source));
}

// The last block ends with the last byte, of which some samples may be no more of the row.
template <int depth>
void UnpackInParts(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    constexpr std::size_t perByte = 8 / depth;
    const std::size_t whole = samples / unpackBlock<depth> * unpackBlock<depth>;
    ForShortBlocks<unpackBlock<depth>>(whole, [=](std::size_t x) {
        Store(destination + x, UnpackVector<depth>(source + x / perByte));
    });
    if (whole == samples)
        return;
    const std::size_t last = (samples + perByte - 1) / perByte * perByte - unpackBlock<depth>;
    _mm512_mask_storeu_epi8(destination + last, FirstBytes(samples - last),
                            UnpackVector<depth>(source + last / perByte));
}

// Channel c of pixel k of 16 pixels at 16 * c + k.
template <int channels, bool turned>
constexpr VectorBytes MakeSortMask()
{
    constexpr int pixels = 64 / (channels == 2 ? 2 : 4);
    VectorBytes mask{};
    for (int i = 0; i < 64; ++i) {
        const int pixel = turned ? i % pixels ^ 7 : i % pixels;
        mask.bytes[i] = static_cast<unsigned char>(pixel * channels + i / pixels);
    }
    return mask;
}

template <int channelCount, bool turned>
struct VectorSplitter
{
    static constexpr int channels = channelCount;

    static void Split(const unsigned char* row, Lanes* samples)
    {
        static constexpr VectorBytes sort = MakeSortMask<channels, turned>();
        const Lanes order = Load(sort.bytes);
        Lanes v[4];
        for (std::ptrdiff_t i = 0; i < 4; ++i)
            v[i] = _mm512_maskz_permutexvar_epi8(all64, order, LoadPixels(row + i * 16 * channels));
        const Lanes low01 = _mm512_maskz_shuffle_i32x4(all16, v[0], v[1], 0x44);
        const Lanes low23 = _mm512_maskz_shuffle_i32x4(all16, v[2], v[3], 0x44);
        const Lanes high01 = _mm512_maskz_shuffle_i32x4(all16, v[0], v[1], 0xee);
        const Lanes high23 = _mm512_maskz_shuffle_i32x4(all16, v[2], v[3], 0xee);
        samples[0] = _mm512_maskz_shuffle_i32x4(all16, low01, low23, 0x88);
        samples[1] = _mm512_maskz_shuffle_i32x4(all16, low01, low23, 0xdd);
        samples[2] = _mm512_maskz_shuffle_i32x4(all16, high01, high23, 0x88);
        if constexpr (channels == 4)
            samples[3] = _mm512_maskz_shuffle_i32x4(all16, high01, high23, 0xdd);
    }

    // Sixteen pixels and no byte after them.
    static Lanes LoadPixels(const unsigned char* row)
    {
        constexpr __mmask64 bytes = ~std::uint64_t{0} >> (64 - 16 * channels);
        return channels == 4 ? Load(row) : _mm512_maskz_loadu_epi8(bytes, row);
    }
};

template <bool turned>
struct VectorSplitter<2, turned>
{
    static constexpr int channels = 2;

    static void Split(const unsigned char* row, Lanes* samples)
    {
        static constexpr VectorBytes sort = MakeSortMask<2, turned>();
        const Lanes order = Load(sort.bytes);
        const Lanes first = _mm512_maskz_permutexvar_epi8(all64, order, Load(row));
        const Lanes second = _mm512_maskz_permutexvar_epi8(all64, order, Load(row + 64));
        samples[0] = _mm512_maskz_shuffle_i32x4(all16, first, second, 0x44);
        samples[1] = _mm512_maskz_shuffle_i32x4(all16, first, second, 0xee);
    }
};

} // namespace
} // namespace zvk::Pelkraft

#include "direct/sample_kernels_lanes.h"

namespace zvk::Pelkraft::Avx512Road {
namespace {

constexpr SampleKernels kernels = MakeSampleKernels<VectorSplitter>();

} // namespace

const SampleKernels& GetSampleKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::Avx512Road
