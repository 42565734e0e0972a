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

inline Lanes Load(const unsigned char* bytes)
{
    return _mm512_loadu_si512(bytes);
}

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

inline void Store(unsigned char* bytes, Lanes v)
{
    _mm512_storeu_si512(bytes, v);
}

template <int lane>
__m128i GetLane(Lanes v)
{
    return _mm512_maskz_extracti32x4_epi32(all8, v, lane);
}

template <int lane>
void StoreLane(unsigned char* bytes, Lanes v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), GetLane<lane>(v));
}

inline Lanes Zero()
{
    return _mm512_setzero_si512();
}

inline Lanes Set8(int v)
{
    return _mm512_set1_epi8(static_cast<char>(v));
}

inline Lanes Set16(int v)
{
    return _mm512_set1_epi16(static_cast<short>(v));
}

inline Lanes And(Lanes a, Lanes b)
{
    return _mm512_and_si512(a, b);
}

inline Lanes Or(Lanes a, Lanes b)
{
    return _mm512_or_si512(a, b);
}

inline Lanes Add8(Lanes a, Lanes b)
{
    return _mm512_add_epi8(a, b);
}

// The sums of unsigned bytes, at most 255 each.
inline Lanes AddSaturated8(Lanes a, Lanes b)
{
    return _mm512_adds_epu8(a, b);
}

inline Lanes Subtract8(Lanes a, Lanes b)
{
    return _mm512_sub_epi8(a, b);
}

inline Lanes Add16(Lanes a, Lanes b)
{
    return _mm512_add_epi16(a, b);
}

// The high half of the unsigned product.
inline Lanes MultiplyHigh16(Lanes a, Lanes b)
{
    return _mm512_mulhi_epu16(a, b);
}

inline Lanes MultiplyLow16(Lanes a, Lanes b)
{
    return _mm512_mullo_epi16(a, b);
}

template <int bits>
Lanes ShiftLeft16(Lanes v)
{
    return _mm512_slli_epi16(v, bits);
}

template <int bits>
Lanes ShiftRight16(Lanes v)
{
    return _mm512_srli_epi16(v, bits);
}

inline Lanes ShiftRight16By(Lanes v, int bits)
{
    return _mm512_srl_epi16(v, _mm_cvtsi32_si128(bits));
}

// A byte of the mask with its top bit set gives 0.
inline Lanes Shuffle(Lanes v, Lanes mask)
{
    return _mm512_shuffle_epi8(v, mask);
}

// Words to bytes, saturated: those of a, then those of b, lane by lane.
inline Lanes Pack16(Lanes a, Lanes b)
{
    return _mm512_packus_epi16(a, b);
}

// The low halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackLow(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return _mm512_unpacklo_epi8(a, b);
    else if constexpr (unitBytes == 2)
        return _mm512_unpacklo_epi16(a, b);
    else if constexpr (unitBytes == 4)
        return _mm512_unpacklo_epi32(a, b);
    else
        return _mm512_unpacklo_epi64(a, b);
}

// The high halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackHigh(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return _mm512_unpackhi_epi8(a, b);
    else if constexpr (unitBytes == 2)
        return _mm512_unpackhi_epi16(a, b);
    else if constexpr (unitBytes == 4)
        return _mm512_unpackhi_epi32(a, b);
    else
        return _mm512_unpackhi_epi64(a, b);
}

// The 8 bytes at bytes, then the 8 at bytes + step.
inline __m128i LoadTwoHalves(const unsigned char* bytes, std::ptrdiff_t step)
{
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
    const void* second = bytes + step;
    return _mm_castpd_si128(
        _mm_loadh_pd(_mm_castsi128_pd(low), static_cast<const double*>(second)));
}

// Half h of lane i holds the 8 bytes at bytes + h * step + i * laneStep.
inline Lanes LoadHalves(const unsigned char* bytes, std::ptrdiff_t step, std::ptrdiff_t laneStep)
{
    Lanes v = _mm512_castsi128_si512(LoadTwoHalves(bytes, step));
    v = _mm512_inserti32x4(v, LoadTwoHalves(bytes + laneStep, step), 1);
    v = _mm512_inserti32x4(v, LoadTwoHalves(bytes + 2 * laneStep, step), 2);
    return _mm512_inserti32x4(v, LoadTwoHalves(bytes + 3 * laneStep, step), 3);
}

// The lane's first 8 bytes to bytes, the others to bytes + step.
template <int lane>
void StoreHalves(unsigned char* bytes, std::ptrdiff_t step, Lanes v)
{
    const __m128i unit = GetLane<lane>(v);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), unit);
    void* second = bytes + step;
    _mm_storeh_pd(static_cast<double*>(second), _mm_castsi128_pd(unit));
}

// 4 bytes each: those of a at the first two places, then those of b.
template <int first, int second, int third, int fourth>
Lanes PickFours(Lanes a, Lanes b)
{
    constexpr int places = first | second << 2 | third << 4 | fourth << 6;
    return _mm512_castps_si512(
        _mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), places));
}

inline Lanes Min8(Lanes a, Lanes b)
{
    return _mm512_min_epu8(a, b);
}

// Bytes of a times those of b, neighbours added to a word. Only b is signed.
inline Lanes MultiplyAdd8(Lanes a, Lanes b)
{
    return _mm512_maddubs_epi16(a, b);
}

inline Lanes ShiftLeft16By(Lanes v, int bits)
{
    return _mm512_sll_epi16(v, _mm_cvtsi32_si128(bits));
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

inline Lanes Set32(int v)
{
    return _mm512_set1_epi32(v);
}

// The last lane first.
inline Lanes TurnLanes(Lanes v)
{
    return _mm512_maskz_shuffle_i64x2(all8, v, v, 0x1b);
}

} // namespace
} // namespace zvk::Pelkraft
