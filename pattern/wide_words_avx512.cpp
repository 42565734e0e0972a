#include "common/inlining.h"
#include "common/lanes_avx512.h"
#include "common/unroll_vector.h"
#include "pattern/sse_row.h"

#include <immintrin.h>

#include <cstddef>

namespace zvk::Pelkraft {
namespace {

constexpr int vectorBytes = 64;
constexpr int blockPixels = pixelsOfWords;

using Picks = const SseTransformation* const*;

// Holds WideWordLanes in registers.
template <int vectors>
struct Block
{
    Lanes places[vectors];
    Lanes stepLimits[vectors];
    Lanes words[vectors];
};

// Says which bytes some pixels have: those of the first vector, and those after it, which begin at
// a place of 0 where there are none, so that no address leaves the row.
struct Reach
{
    __mmask64 first;
    __mmask64 rest;
    // cppcheck-suppress unusedStructMember // templates alone use it
    std::size_t restPlace;
};

__mmask64 LowBits(std::size_t count)
{
    return count >= vectorBytes ? ~__mmask64{0} : (__mmask64{1} << count) - 1;
}

Reach ReachOf(std::size_t bytes)
{
    if (bytes <= vectorBytes)
        return {LowBits(bytes), 0, 0};
    return {LowBits(bytes), LowBits(bytes - vectorBytes), vectorBytes};
}

template <int vectors>
Block<vectors> LoadBlock(const WideWordLanes& lanes)
{
    Block<vectors> block;
    for (int vector = 0; vector < vectors; ++vector) {
        block.places[vector] = Load(lanes.mPlaces[vector]);
        block.stepLimits[vector] = Load(lanes.mStepLimits[vector]);
        block.words[vector] = Load(lanes.mWords[vector]);
    }
    return block;
}

template <int vector>
Lanes LoadValues(const SseTransformation* tables)
{
    const auto* values = reinterpret_cast<const unsigned char*>(&tables->mInkValues);
    return _mm512_load_si512(values + std::ptrdiff_t{vector} * vectorBytes);
}

// The mask has all bytes: GCC 12 warns of what its form without one leaves undefined.
PELKRAFT_ALWAYS_INLINE inline Lanes PermuteBytes(Lanes places, Lanes bytes)
{
    return _mm512_maskz_permutexvar_epi8(~__mmask64{0}, places, bytes);
}

template <int vectors, bool isLong>
PELKRAFT_ALWAYS_INLINE inline void LoadIndexes(const unsigned char* source, const Reach& reach,
                                               const Block<vectors>& block, Lanes* indexes)
{
    const Lanes first = _mm512_maskz_loadu_epi8(reach.first, source);
    Lanes rest = Zero();
    if constexpr (isLong)
        rest = _mm512_maskz_loadu_epi8(reach.rest, source + reach.restPlace);
    // The values of the second ink of a word stand after the 8 of the first.
    const Lanes secondInks = Set16(stepsOfInkValues << 8);
    for (int vector = 0; vector < vectors; ++vector) {
        const Lanes steps = isLong ? _mm512_permutex2var_epi8(first, block.places[vector], rest)
                                   : PermuteBytes(block.places[vector], first);
        indexes[vector] = Or(_mm512_min_epu8(steps, block.stepLimits[vector]), secondInks);
    }
}

// Each pixel's tables fill its word of all lanes, those of the first all words before that.
template <int vector, bool draws>
PELKRAFT_ALWAYS_INLINE inline Lanes LookUp(Lanes indexes, Picks picks)
{
    Lanes values = Shuffle(LoadValues<vector>(picks[0]), indexes);
    if constexpr (draws)
        Unroll<blockPixels - 1>([&](auto before) {
            constexpr int pixel = before + 1;
            constexpr __mmask64 word = __mmask64{0x0003000300030003} << (2 * pixel);
            values =
                _mm512_mask_shuffle_epi8(values, word, LoadValues<vector>(picks[pixel]), indexes);
        });
    return values;
}

template <int vectors, bool isLong, bool draws>
PELKRAFT_ALWAYS_INLINE inline void
ApplyBlock(const unsigned char* source, unsigned char* destination, const Reach& sourceReach,
           const Reach& destinationReach, const Block<vectors>& block, Picks picks)
{
    Lanes indexes[vectors];
    LoadIndexes<vectors, isLong>(source, sourceReach, block, indexes);
    const Lanes values = LookUp<0, draws>(indexes[0], picks);
    if constexpr (vectors == 1) {
        _mm512_mask_storeu_epi8(destination, destinationReach.first,
                                PermuteBytes(block.words[0], values));
    } else {
        const Lanes others = LookUp<1, draws>(indexes[1], picks);
        _mm512_mask_storeu_epi8(destination, destinationReach.first,
                                _mm512_permutex2var_epi8(values, block.words[0], others));
        _mm512_mask_storeu_epi8(destination + destinationReach.restPlace, destinationReach.rest,
                                _mm512_permutex2var_epi8(values, block.words[1], others));
    }
}

template <int vectors, bool isLong, bool draws>
void ApplyBlocks(const SseRow& row, std::size_t firstPixel, std::size_t blocks, Picks picks)
{
    const auto block = LoadBlock<vectors>(row.lanes->mLookup.mWide);
    const std::size_t sourceBytes = std::size_t{blockPixels} * row.sourceStride;
    const std::size_t destinationBytes = std::size_t{blockPixels} * row.destinationStride;
    const Reach sourceReach = ReachOf(sourceBytes);
    const Reach destinationReach = ReachOf(destinationBytes);
    const unsigned char* source = row.source + firstPixel * row.sourceStride;
    unsigned char* destination = row.destination + firstPixel * row.destinationStride;
    for (std::size_t i = 0; i < blocks; ++i) {
        ApplyBlock<vectors, isLong, draws>(source, destination, sourceReach, destinationReach,
                                           block, picks);
        source += sourceBytes;
        destination += destinationBytes;
        if constexpr (draws)
            picks += blockPixels;
    }
}

// The row has fewer pixels than a block, or is a block around the end of the field.
template <int vectors, bool isLong, bool draws>
void ApplyPart(const SseRow& row, std::size_t firstPixel, std::size_t pixels, std::size_t position)
{
    const SseTransformation* picks[blockPixels];
    for (std::size_t i = 0; i < blockPixels; ++i) {
        picks[i] = draws ? row.field[position] : row.single;
        if (draws && i < pixels && ++position == row.fieldSize)
            position = 0;
    }
    ApplyBlock<vectors, isLong, draws>(row.source + firstPixel * row.sourceStride,
                                       row.destination + firstPixel * row.destinationStride,
                                       ReachOf(pixels * row.sourceStride),
                                       ReachOf(pixels * row.destinationStride),
                                       LoadBlock<vectors>(row.lanes->mLookup.mWide), picks);
}

template <int vectors, bool isLong, bool draws>
void ApplyPixels(const SseRow& row)
{
    std::size_t position = row.position;
    for (std::size_t pixel = 0; pixel < row.pixels;) {
        const std::size_t left = row.pixels - pixel;
        const std::size_t ahead = draws ? row.fieldSize - position : left;
        const std::size_t blocks = (left < ahead ? left : ahead) / blockPixels;
        std::size_t pixels = blocks * blockPixels;
        if (blocks != 0) {
            ApplyBlocks<vectors, isLong, draws>(row, pixel, blocks,
                                                draws ? row.field + position : &row.single);
        } else {
            pixels = left < blockPixels ? left : blockPixels;
            ApplyPart<vectors, isLong, draws>(row, pixel, pixels, position);
        }
        pixel += pixels;
        if (draws)
            position = (position + pixels) % row.fieldSize;
    }
}

template <int vectors, bool isLong>
void ApplyByWalk(const SseRow& row)
{
    if (row.single != nullptr)
        ApplyPixels<vectors, isLong, false>(row);
    else
        ApplyPixels<vectors, isLong, true>(row);
}

template <int vectors>
void ApplyBySource(const SseRow& row)
{
    if (row.sourceStride * blockPixels > vectorBytes)
        ApplyByWalk<vectors, true>(row);
    else
        ApplyByWalk<vectors, false>(row);
}

void ApplyRow(const SseRow& row)
{
    if (row.destinationStride * blockPixels > vectorBytes)
        ApplyBySource<2>(row);
    else
        ApplyBySource<1>(row);
}

} // namespace

SseRowMethod GetWideWordMethodAvx512()
{
    return ApplyRow;
}

} // namespace zvk::Pelkraft
