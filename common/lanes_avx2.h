#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

// The lane operations on 32-byte vectors, for AVX2.
// Only for files built with these vector flags: all of it has internal linkage on purpose, so that
// the linker never takes code of these files for the rest of the program.
namespace zvk::Pelkraft {
namespace {

using Lanes = __m256i;
// A lane has 16 bytes; shuffles, unpacks and packs work inside lanes.
constexpr int laneCount = 2;

inline __m128i LoadUnit(const unsigned char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

template <int lane>
__m128i GetLane(Lanes v)
{
    return _mm256_extracti128_si256(v, lane);
}

} // namespace
} // namespace zvk::Pelkraft

#define PELKRAFT_LANES(name) _mm256_##name
#define PELKRAFT_BITS(name) _mm256_##name##_si256
#define PELKRAFT_FLOATS _mm256_castsi256_ps
#include "common/lane_operations.h"

namespace zvk::Pelkraft {
namespace {

// Lane i holds the 16 bytes at bytes + i * step.
inline Lanes LoadSpread(const unsigned char* bytes, std::ptrdiff_t step)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadUnit(bytes)), LoadUnit(bytes + step),
                                   1);
}

// The same 16 bytes in every lane.
inline Lanes Broadcast(const unsigned char* bytes)
{
    return _mm256_broadcastsi128_si256(LoadUnit(bytes));
}

// Half h of lane i holds the 8 bytes at bytes + h * step + i * laneStep.
inline Lanes LoadHalves(const unsigned char* bytes, std::ptrdiff_t step, std::ptrdiff_t laneStep)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadTwoHalves(bytes, step)),
                                   LoadTwoHalves(bytes + laneStep, step), 1);
}

// One lane of a, then one of b.
template <int first, int second>
Lanes JoinLanes(Lanes a, Lanes b)
{
    return _mm256_permute2x128_si256(a, b, first | (second + 2) << 4);
}

// Unit u goes to lane u % laneCount, place u / laneCount.
template <int unitBytes>
Lanes Deal(Lanes v)
{
    if constexpr (unitBytes == 4)
        return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    else
        return _mm256_permute4x64_epi64(v, 0xd8);
}

// The way back from Deal.
template <int unitBytes>
Lanes Gather(Lanes v)
{
    if constexpr (unitBytes == 4)
        return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    else
        return _mm256_permute4x64_epi64(v, 0xd8);
}

using LaneMask = std::uint32_t;

// The low bits of the bytes, the first byte's lowest.
inline LaneMask LowBits(Lanes v)
{
    return static_cast<LaneMask>(_mm256_movemask_epi8(_mm256_slli_epi16(v, 7)));
}

// The last lane first.
inline Lanes TurnLanes(Lanes v)
{
    return _mm256_permute2x128_si256(v, v, 1);
}

// Subtracts 1 where an unsigned byte is at most its limit.
inline Lanes CountDownWhereAtMost8(Lanes counts, Lanes v, Lanes limits)
{
    return _mm256_add_epi8(counts, _mm256_cmpeq_epi8(_mm256_min_epu8(v, limits), v));
}

// The same in words.
inline Lanes CountDownWhereAtMost16(Lanes counts, Lanes v, Lanes limits)
{
    return _mm256_add_epi16(counts, _mm256_cmpeq_epi16(_mm256_subs_epu16(v, limits), Zero()));
}

} // namespace
} // namespace zvk::Pelkraft
