#include "common/inlining.h"
#include "common/lanes_avx512.h"
#include "common/unroll_vector.h"
#include "direct/colliding_planes.h"
#include "direct/short_rows_lanes.h"
#include "direct/split_samples_avx512.h"

#include <cstdint>

// The byte permute across the whole vector sorts 64 bytes at once, so that a block is one run of
// the row instead of a run for each lane.
namespace zvk::Pelkraft {
namespace {

const SplitMergeKernels& NarrowerKernels()
{
    return Avx2Road::GetSplitMergeKernels();
}

// The block is cut into `order` pieces of whole pixels. Sorted, unit k of lane l of a piece holds
// the samples of channel 4k + l: the units are transposed in the lanes, then the lanes.
template <int sampleBytes, int channels>
struct Pieces
{
    static constexpr int order = channels <= 4 ? 4 : channels <= 8 ? 8 : 16;
    static constexpr int laneUnits = order / 4;
    static constexpr int unitBytes = vectorBytes / order;
    static constexpr int pixels = unitBytes / sampleBytes;
    static constexpr int pixelBytes = channels * sampleBytes;
    static constexpr int bytes = pixels * pixelBytes;
    static constexpr int blockPixels = order * pixels;
    static constexpr int blockBytes = order * bytes;

    static constexpr int SortedPlace(int byte)
    {
        const int channel = byte % pixelBytes / sampleBytes;
        const int inUnit = byte / pixelBytes * sampleBytes + byte % sampleBytes;
        return 16 * (channel % 4) + unitBytes * (channel / 4) + inUnit;
    }

    // The first byte of the piece is number `start` of the vector.
    template <typename Samples>
    static constexpr Places Sort(int start)
    {
        Places places{};
        for (int byte = 0; byte < bytes; ++byte)
            places.bytes[SortedPlace(byte)] =
                static_cast<unsigned char>(Samples::PlaceOf(byte + start));
        return places;
    }

    static constexpr Places Unsort()
    {
        Places places{};
        for (int byte = 0; byte < bytes; ++byte)
            places.bytes[byte] = static_cast<unsigned char>(SortedPlace(byte));
        return places;
    }

    // The last 64 bytes of the block, from the last two pieces.
    static constexpr Places UnsortEnd()
    {
        Places places{};
        for (int i = 0; i < vectorBytes; ++i) {
            const int byte = 2 * bytes - vectorBytes + i;
            const int place =
                byte < bytes ? SortedPlace(byte) : vectorBytes + SortedPlace(byte - bytes);
            places.bytes[i] = static_cast<unsigned char>(place);
        }
        return places;
    }
};

template <typename Samples, int channels>
struct SortPlaces
{
    using Piece = Pieces<Samples::sampleBytes, channels>;
    // cppcheck-suppress unusedStructMember // the kernels load it
    static constexpr Places sort = Piece::template Sort<Samples>(0);
    // cppcheck-suppress unusedStructMember // the kernels load it
    static constexpr Places sortAtEnd = Piece::template Sort<Samples>(vectorBytes - Piece::bytes);
};

template <int sampleBytes, int channels>
struct UnsortPlaces
{
    using Piece = Pieces<sampleBytes, channels>;
    // cppcheck-suppress unusedStructMember // the kernels load it
    static constexpr Places unsort = Piece::Unsort();
    // cppcheck-suppress unusedStructMember // the kernels load it
    static constexpr Places unsortEnd = Piece::UnsortEnd();
};

template <int blockPixels, typename Body>
PELKRAFT_ALWAYS_INLINE inline void ForBlocks(std::size_t pixels, Body body)
{
    const std::size_t last = pixels - blockPixels;
    for (std::size_t pixel = 0; pixel < pixels; pixel += blockPixels)
        body(pixel < last ? pixel : last);
}

// In every lane, `units` vectors of as many units.
template <int units>
PELKRAFT_ALWAYS_INLINE inline void TransposeUnits(Lanes* v)
{
    if constexpr (units == 2) {
        const Lanes low = UnpackLow<8>(v[0], v[1]);
        v[1] = UnpackHigh<8>(v[0], v[1]);
        v[0] = low;
    } else if constexpr (units == 4) {
        const Lanes low01 = UnpackLow<4>(v[0], v[1]), high01 = UnpackHigh<4>(v[0], v[1]);
        const Lanes low23 = UnpackLow<4>(v[2], v[3]), high23 = UnpackHigh<4>(v[2], v[3]);
        v[0] = UnpackLow<8>(low01, low23);
        v[1] = UnpackHigh<8>(low01, low23);
        v[2] = UnpackLow<8>(high01, high23);
        v[3] = UnpackHigh<8>(high01, high23);
    }
}

PELKRAFT_ALWAYS_INLINE inline void TransposeLanes(Lanes& a, Lanes& b, Lanes& c, Lanes& d)
{
    constexpr int lowLanes = 0x44, highLanes = 0xee, evenLanes = 0x88, oddLanes = 0xdd;
    const Lanes ab01 = _mm512_shuffle_i32x4(a, b, lowLanes);
    const Lanes ab23 = _mm512_shuffle_i32x4(a, b, highLanes);
    const Lanes cd01 = _mm512_shuffle_i32x4(c, d, lowLanes);
    const Lanes cd23 = _mm512_shuffle_i32x4(c, d, highLanes);
    a = _mm512_shuffle_i32x4(ab01, cd01, evenLanes);
    b = _mm512_shuffle_i32x4(ab01, cd01, oddLanes);
    c = _mm512_shuffle_i32x4(ab23, cd23, evenLanes);
    d = _mm512_shuffle_i32x4(ab23, cd23, oddLanes);
}

template <typename Samples, int channels>
PELKRAFT_ALWAYS_INLINE inline void SplitBlock(const unsigned char* block, unsigned char* const* to,
                                              std::size_t pixel)
{
    using Piece = Pieces<Samples::sampleBytes, channels>;
    using Table = SortPlaces<Samples, channels>;
    const Lanes sort = Load(Table::sort.bytes);
    const Lanes sortAtEnd = Load(Table::sortAtEnd.bytes);
    constexpr int units = Piece::laneUnits;
    constexpr int loadFactor = Samples::rowBytes / Samples::sampleBytes;

    Lanes v[Piece::order];
    Unroll<Piece::order>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        constexpr bool isLast = i + 1 == Piece::order;
        constexpr int start = isLast ? Piece::blockBytes - vectorBytes : i * Piece::bytes;
        const Lanes samples = Samples::LoadFrom(block + std::ptrdiff_t{start} * loadFactor);
        v[i] = _mm512_permutexvar_epi8(isLast ? sortAtEnd : sort, samples);
    });
    Unroll<4>([&](auto part) PELKRAFT_ALWAYS_INLINE { TransposeUnits<units>(v + part * units); });
    Unroll<(channels + 3) / 4>([&](auto unit) PELKRAFT_ALWAYS_INLINE {
        TransposeLanes(v[unit], v[units + unit], v[2 * units + unit], v[3 * units + unit]);
        Unroll<4>([&](auto lane) PELKRAFT_ALWAYS_INLINE {
            constexpr int channel = 4 * unit + lane;
            if constexpr (channel < channels)
                Samples::StoreTo(to[channel] + pixel * Samples::planeBytes, v[lane * units + unit]);
        });
    });
}

// Ascending: a piece may spoil bytes of the next one, never of the one before.
template <int sampleBytes, int channels>
PELKRAFT_ALWAYS_INLINE inline void MergeBlock(const unsigned char* const* from, std::size_t at,
                                              unsigned char* block)
{
    using Piece = Pieces<sampleBytes, channels>;
    using Table = UnsortPlaces<sampleBytes, channels>;
    const Lanes unsort = Load(Table::unsort.bytes);
    constexpr int units = Piece::laneUnits;
    constexpr int last = Piece::order - 1;

    Lanes v[Piece::order];
    Unroll<units>([&](auto unit) PELKRAFT_ALWAYS_INLINE {
        Unroll<4>([&](auto lane) PELKRAFT_ALWAYS_INLINE {
            if constexpr (4 * unit + lane < channels)
                v[lane * units + unit] = Load(from[4 * unit + lane] + at);
            else
                v[lane * units + unit] = Zero();
        });
        if constexpr (4 * unit < channels)
            TransposeLanes(v[unit], v[units + unit], v[2 * units + unit], v[3 * units + unit]);
    });
    Unroll<4>([&](auto part) PELKRAFT_ALWAYS_INLINE { TransposeUnits<units>(v + part * units); });
    Unroll<last>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        Store(block + i * Piece::bytes, _mm512_permutexvar_epi8(unsort, v[i]));
    });
    if constexpr (Piece::bytes == vectorBytes)
        v[last] = _mm512_permutexvar_epi8(unsort, v[last]);
    else
        v[last] = _mm512_permutex2var_epi8(v[last - 1], Load(Table::unsortEnd.bytes), v[last]);
    Store(block + Piece::blockBytes - vectorBytes, v[last]);
}

// A programme: every result vector straight from all vectors of the block, two at a time.
template <int channels>
struct Programme
{
    Places places[channels];
    std::uint64_t fromPair[channels][(channels + 1) / 2];
};

template <typename Samples, int channels>
constexpr Programme<channels> SplitProgramme()
{
    constexpr int sampleBytes = Samples::sampleBytes;
    Programme<channels> programme{};
    for (int result = 0; result < channels; ++result)
        for (int i = 0; i < vectorBytes; ++i) {
            const int byte = (i / sampleBytes * channels + result) * sampleBytes + i % sampleBytes;
            const int place =
                byte / vectorBytes % 2 * vectorBytes + Samples::PlaceOf(byte % vectorBytes);
            programme.places[result].bytes[i] = static_cast<unsigned char>(place);
            programme.fromPair[result][byte / 128] |= std::uint64_t{1} << i;
        }
    return programme;
}

template <int sampleBytes, int channels>
constexpr Programme<channels> MergeProgramme()
{
    Programme<channels> programme{};
    for (int result = 0; result < channels; ++result)
        for (int i = 0; i < vectorBytes; ++i) {
            const int sample = (vectorBytes * result + i) / sampleBytes;
            const int channel = sample % channels;
            const int place = sample / channels * sampleBytes + i % sampleBytes;
            programme.places[result].bytes[i] =
                static_cast<unsigned char>(place + channel % 2 * vectorBytes);
            programme.fromPair[result][channel / 2] |= std::uint64_t{1} << i;
        }
    return programme;
}

template <int channels>
PELKRAFT_ALWAYS_INLINE inline Lanes RunProgramme(const Programme<channels>& programme, int result,
                                                 const Lanes* v)
{
    const Lanes places = Load(programme.places[result].bytes);
    Lanes sum = _mm512_permutex2var_epi8(v[0], places, v[1]);
    Unroll<(channels - 1) / 2>([&](auto i) PELKRAFT_ALWAYS_INLINE {
        constexpr int first = 2 * i + 2;
        const __mmask64 mask = programme.fromPair[result][i + 1];
        if constexpr (first + 1 < channels)
            sum = _mm512_mask_mov_epi8(sum, mask,
                                       _mm512_permutex2var_epi8(v[first], places, v[first + 1]));
        else
            sum = _mm512_mask_permutexvar_epi8(sum, mask, places, v[first]);
    });
    return sum;
}

// Fewer permutes than pieces take, for these.
constexpr bool IsProgrammed(int channels)
{
    return channels == 2 || channels == 3 || channels == 5;
}

template <typename Samples, int channels>
void SplitDense(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    constexpr int blockPixels = vectorBytes / Samples::sampleBytes;
    if (pixels < blockPixels)
        return SplitShort<Samples, channels>(row, planes, pixels);

    unsigned char* to[channels];
    for (int channel = 0; channel < channels; ++channel)
        to[channel] = planes[channel];
    ForBlocks<blockPixels>(pixels, [&](std::size_t pixel) PELKRAFT_ALWAYS_INLINE {
        const unsigned char* block = row + pixel * channels * Samples::rowBytes;
        if constexpr (IsProgrammed(channels)) {
            static constexpr auto programme = SplitProgramme<Samples, channels>();
            constexpr int loadBytes = vectorBytes / Samples::sampleBytes * Samples::rowBytes;
            Lanes v[channels];
            Unroll<channels>([&](auto i) PELKRAFT_ALWAYS_INLINE {
                v[i] = Samples::LoadFrom(block + i * loadBytes);
            });
            Unroll<channels>([&](auto i) PELKRAFT_ALWAYS_INLINE {
                Samples::StoreTo(to[i] + pixel * Samples::planeBytes,
                                 RunProgramme<channels>(programme, i, v));
            });
        } else {
            SplitBlock<Samples, channels>(block, to, pixel);
        }
    });
}

template <int sampleBytes, int channels>
void Merge(const unsigned char* const* planes, unsigned char* row, std::size_t pixels)
{
    constexpr int blockPixels = vectorBytes / sampleBytes;
    if (pixels < blockPixels)
        return MergeShort<sampleBytes, channels>(planes, row, pixels);

    const unsigned char* from[channels];
    for (int channel = 0; channel < channels; ++channel)
        from[channel] = planes[channel];
    ForBlocks<blockPixels>(pixels, [&](std::size_t pixel) PELKRAFT_ALWAYS_INLINE {
        unsigned char* block = row + pixel * channels * sampleBytes;
        const std::size_t at = pixel * sampleBytes;
        if constexpr (IsProgrammed(channels)) {
            static constexpr auto programme = MergeProgramme<sampleBytes, channels>();
            Lanes v[channels];
            Unroll<channels>([&](auto i) PELKRAFT_ALWAYS_INLINE { v[i] = Load(from[i] + at); });
            Unroll<channels>([&](auto i) PELKRAFT_ALWAYS_INLINE {
                Store(block + i * vectorBytes, RunProgramme<channels>(programme, i, v));
            });
        } else {
            MergeBlock<sampleBytes, channels>(from, at, block);
        }
    });
}

template <int sampleBytes, int channels>
void Split(const unsigned char* row, unsigned char* const* planes, std::size_t pixels)
{
    if (PlanesCollide(planes, channels, pixels * sampleBytes))
        return SplitShort<KeptSamples<sampleBytes>, channels>(row, planes, pixels);
    SplitDense<KeptSamples<sampleBytes>, channels>(row, planes, pixels);
}

// Groups of 16 bytes a pixel gain nothing from wider vectors.
template <int sampleBytes>
void SplitWide(const unsigned char* row, unsigned char* const* planes, std::size_t pixels,
               const WidePixels& shape)
{
    WideSplitAt(NarrowerKernels(), sampleBytes)(row, planes, pixels, shape);
}

template <int sampleBytes>
void MergeWide(const unsigned char* const* planes, unsigned char* row, std::size_t pixels,
               const WidePixels& shape)
{
    WideMergeAt(NarrowerKernels(), sampleBytes)(planes, row, pixels, shape);
}

} // namespace
} // namespace zvk::Pelkraft

#include "direct/split_merge_kernels_lanes.h"

namespace zvk::Pelkraft {

const SplitMergeKernels& Avx512Road::GetSplitMergeKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft
