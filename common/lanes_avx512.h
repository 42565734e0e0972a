#pragma once

// GCC takes the undefined operands inside its own intrinsics for a fault of the caller.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

#include <cstddef>
#include <cstdint>

// The lane operations on 64-byte vectors, for AVX-512 with F, BW, VL and VBMI.
// Only for files built with these vector flags: all of it has internal linkage on purpose, so that
// the linker never takes code of these files for the rest of the program.
namespace zvk::Pelkraft {
namespace {

using Lanes = __m512i;

// All of a vector's units. The operations that take a mask stand where those without one make GCC
// 12 warn of the undefined operand inside its own header; the code is the same.
constexpr __mmask8 all8 = 0xff;
constexpr __mmask16 all16 = 0xffff;
constexpr __mmask64 all64 = ~__mmask64{0};

// A lane has 16 bytes; shuffles, unpacks and packs work inside lanes.
constexpr int laneCount = 4;

inline __m128i LoadUnit(const unsigned char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

template <int lane>
__m128i GetLane(Lanes v)
{
    return _mm512_maskz_extracti32x4_epi32(all8, v, lane);
}

} // namespace
} // namespace zvk::Pelkraft

#define PELKRAFT_LANES(name) _mm512_##name
#define PELKRAFT_BITS(name) _mm512_##name##_si512
#define PELKRAFT_FLOATS _mm512_castsi512_ps
#include "common/lane_operations.h"

namespace zvk::Pelkraft {
namespace {

// Lane i holds the 16 bytes at bytes + i * step.
inline Lanes LoadSpread(const unsigned char* bytes, std::ptrdiff_t step)
{
    Lanes v = _mm512_castsi128_si512(LoadUnit(bytes));
    v = _mm512_inserti32x4(v, LoadUnit(bytes + step), 1);
    v = _mm512_inserti32x4(v, LoadUnit(bytes + 2 * step), 2);
    return _mm512_inserti32x4(v, LoadUnit(bytes + 3 * step), 3);
}

// The same 16 bytes in every lane.
inline Lanes Broadcast(const unsigned char* bytes)
{
    return _mm512_maskz_broadcast_i32x4(all16, LoadUnit(bytes));
}

// Half h of lane i holds the 8 bytes at bytes + h * step + i * laneStep.
inline Lanes LoadHalves(const unsigned char* bytes, std::ptrdiff_t step, std::ptrdiff_t laneStep)
{
    Lanes v = _mm512_castsi128_si512(LoadTwoHalves(bytes, step));
    v = _mm512_inserti32x4(v, LoadTwoHalves(bytes + laneStep, step), 1);
    v = _mm512_inserti32x4(v, LoadTwoHalves(bytes + 2 * laneStep, step), 2);
    return _mm512_inserti32x4(v, LoadTwoHalves(bytes + 3 * laneStep, step), 3);
}

// Unit u goes to lane u % laneCount, place u / laneCount.
template <int unitBytes>
Lanes Deal(Lanes v)
{
    if constexpr (unitBytes == 4)
        return _mm512_maskz_permutexvar_epi32(
            all16, _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), v);
    else
        return _mm512_maskz_permutexvar_epi64(all8, _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v);
}

// The way back from Deal.
template <int unitBytes>
Lanes Gather(Lanes v)
{
    if constexpr (unitBytes == 4)
        return Deal<4>(v);
    else
        return _mm512_maskz_permutexvar_epi64(all8, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), v);
}

using LaneMask = std::uint64_t;

// The low bits of the bytes, the first byte's lowest.
inline LaneMask LowBits(Lanes v)
{
    return _mm512_test_epi8_mask(v, Set8(1));
}

// The last lane first.
inline Lanes TurnLanes(Lanes v)
{
    return _mm512_maskz_shuffle_i64x2(all8, v, v, 0x1b);
}

// Subtracts 1 where an unsigned byte is at most its limit.
inline Lanes CountDownWhereAtMost8(Lanes counts, Lanes v, Lanes limits)
{
    return _mm512_mask_sub_epi8(counts, _mm512_cmple_epu8_mask(v, limits), counts, Set8(1));
}

// The same in words.
inline Lanes CountDownWhereAtMost16(Lanes counts, Lanes v, Lanes limits)
{
    return _mm512_mask_sub_epi16(counts, _mm512_cmple_epu16_mask(v, limits), counts, Set16(1));
}

} // namespace
} // namespace zvk::Pelkraft
