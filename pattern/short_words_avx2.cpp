#include "common/inlining.h"
#include "common/lanes_avx2.h"
#include "common/unroll_vector.h"
#include "pattern/row_rest_vector.h"
#include "pattern/sse_row.h"

#include <immintrin.h>

#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr int blockPixels = pixelsOfWords;

using Picks = const SseTransformation* const*;

// Each vector holds the words of 4 out-inks.
template <int vectors>
struct Words
{
    Lanes byVector[vectors];
};

template <int vector>
Lanes LoadValues(const SseTransformation* tables)
{
    return Load(reinterpret_cast<const unsigned char*>(&tables->mInkValues) +
                vector * sizeof(Lanes));
}

template <int vectors, int pieces>
PELKRAFT_ALWAYS_INLINE inline Words<vectors>
LoadIndexes(const unsigned char* source, std::size_t pieceStride, const ShortWordLanes& lanes)
{
    Words<vectors> words;
    Unroll<vectors>([&](auto vector) { words.byVector[vector] = Zero(); });
    Unroll<pieces>([&](auto piece) {
        const Lanes bytes = Broadcast(source + piece * pieceStride);
        Unroll<vectors>([&](auto vector) {
            const Lanes steps = Shuffle(bytes, Load(lanes.mPlaces[piece][vector]));
            words.byVector[vector] = Or(words.byVector[vector], steps);
        });
    });
    // The values of the second ink of a word stand after the 8 of the first.
    const Lanes secondInks = Set16(stepsOfInkValues << 8);
    Unroll<vectors>([&](auto vector) {
        const Lanes limits = Load(lanes.mStepLimits[vector]);
        words.byVector[vector] = Or(_mm256_min_epu8(words.byVector[vector], limits), secondInks);
    });
    return words;
}

// Each pixel's tables fill its word of all lanes.
template <int vectors>
PELKRAFT_ALWAYS_INLINE inline Words<vectors> LookUp(const Words<vectors>& indexes, Picks picks)
{
    Words<vectors> values;
    Unroll<vectors>([&](auto vector) { values.byVector[vector] = Zero(); });
    Unroll<blockPixels>([&](auto pixel) {
        constexpr int word = 1 << pixel;
        Unroll<vectors>([&](auto vector) {
            const Lanes own = Shuffle(LoadValues<vector>(picks[pixel]), indexes.byVector[vector]);
            values.byVector[vector] = _mm256_blend_epi16(values.byVector[vector], own, word);
        });
    });
    return values;
}

// The combination is the same at each pixel.
template <int vectors>
PELKRAFT_ALWAYS_INLINE inline Words<vectors> LookUpAlike(const Words<vectors>& indexes,
                                                         const SseTransformation* tables)
{
    Words<vectors> values;
    Unroll<vectors>([&](auto vector) {
        values.byVector[vector] = Shuffle(LoadValues<vector>(tables), indexes.byVector[vector]);
    });
    return values;
}

// A pixel is a word of the low lane and that of the high lane.
PELKRAFT_ALWAYS_INLINE inline void StorePixels(unsigned char* destination, std::size_t stride,
                                               const Words<1>& values, __m128i closing)
{
    const __m128i low = GetLane<0>(values.byVector[0]);
    const __m128i high = GetLane<1>(values.byVector[0]);
    const __m128i first = _mm_shuffle_epi8(_mm_unpacklo_epi16(low, high), closing);
    const __m128i second = _mm_shuffle_epi8(_mm_unpackhi_epi16(low, high), closing);
    // Stores ascend, here and below: the surplus bytes of one are overwritten by the next.
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), first);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(destination + 4 * stride), second);
}

PELKRAFT_ALWAYS_INLINE inline void StorePixels(unsigned char* destination, std::size_t stride,
                                               const Words<2>& values, __m128i closing)
{
    const Lanes even = _mm256_permute2x128_si256(values.byVector[0], values.byVector[1], 0x20);
    const Lanes odd = _mm256_permute2x128_si256(values.byVector[0], values.byVector[1], 0x31);
    // The low lane has the out-inks 0 to 3 of four pixels, the high lane the others.
    const Lanes front = UnpackLow<2>(even, odd);
    const Lanes back = UnpackHigh<2>(even, odd);
    const Lanes first = _mm256_permute2x128_si256(front, back, 0x20);
    const Lanes second = _mm256_permute2x128_si256(front, back, 0x31);
    const Lanes mask = _mm256_broadcastsi128_si256(closing);
    // One has the pixels 0, 1, 4 and 5, the other the pixels 2, 3, 6 and 7.
    const Lanes outer = Shuffle(UnpackLow<4>(first, second), mask);
    const Lanes inner = Shuffle(UnpackHigh<4>(first, second), mask);
    StoreLane<0>(destination, outer);
    StoreLane<0>(destination + 2 * stride, inner);
    StoreLane<1>(destination + 4 * stride, outer);
    StoreLane<1>(destination + 6 * stride, inner);
}

// The row is a whole number of blocks, before the end of the field.
template <int vectors, int pieces, bool draws>
void ApplyBlocks(const SseRow& row)
{
    const ShortWordLanes& lanes = row.lanes->mLookup.mShort;
    const __m128i closing = LoadUnit(lanes.mClosing);
    const std::size_t sourceStride = row.sourceStride;
    const std::size_t destinationStride = row.destinationStride;
    const unsigned char* source = row.source;
    unsigned char* destination = row.destination;
    const Picks field = draws ? row.field + row.position : nullptr;
    const SseTransformation* const single = row.single;
    const std::uint32_t pixels = row.pixels;
    for (std::uint32_t pixel = 0; pixel < pixels; pixel += blockPixels) {
        const auto indexes =
            LoadIndexes<vectors, pieces>(source, blockPixels / pieces * sourceStride, lanes);
        StorePixels(destination, destinationStride,
                    draws ? LookUp<vectors>(indexes, field + pixel)
                          : LookUpAlike<vectors>(indexes, single),
                    closing);
        source += blockPixels * sourceStride;
        destination += blockPixels * destinationStride;
    }
}

template <bool draws>
SseRowMethod SelectBlocks(const SseRow& row)
{
    const std::uint32_t pieces = row.lanes->mLookup.mShort.mPieces;
    if (row.destinationStride > 4)
        return pieces == 1 ? ApplyBlocks<2, 1, draws> : ApplyBlocks<2, 2, draws>;
    switch (pieces) {
    case 1:
        return ApplyBlocks<1, 1, draws>;
    case 2:
        return ApplyBlocks<1, 2, draws>;
    case 4:
        return ApplyBlocks<1, 4, draws>;
    default:
        return ApplyBlocks<1, 8, draws>;
    }
}

// Counts the pixels in front that go by whole blocks, in a row that has room for one.
std::uint32_t CountBlockPixels(const SseRow& row)
{
    const std::uint32_t roomy = row.pixels - row.lanes->mLookup.mShort.mRoomyPixels + blockPixels;
    const std::uint32_t ahead = CountPixelsAhead(row);
    return (roomy < ahead ? roomy : ahead) / blockPixels * blockPixels;
}

// The pixels between the last block and the end of the field or of the row go one by one.
void ApplyRow(const SseRow& row)
{
    const SseRowMethod applyBlocks =
        row.single != nullptr ? SelectBlocks<false>(row) : SelectBlocks<true>(row);
    SseRow rest = row;
    while (rest.pixels >= rest.lanes->mLookup.mShort.mRoomyPixels) {
        std::uint32_t pixels = CountBlockPixels(rest);
        if (pixels != 0) {
            applyBlocks(FirstPixels(rest, pixels));
        } else {
            pixels = CountPixelsAhead(rest);
            GetSseRowMethodVector()(FirstPixels(rest, pixels));
        }
        rest = SkipPixels(rest, pixels);
    }
    GetSseRowMethodVector()(rest);
}

} // namespace

SseRowMethod GetShortWordMethodAvx2()
{
    return ApplyRow;
}

} // namespace zvk::Pelkraft
