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

inline Lanes Load(const unsigned char* bytes)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

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

inline void Store(unsigned char* bytes, Lanes v)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), v);
}

template <int lane>
__m128i GetLane(Lanes v)
{
    return _mm256_extracti128_si256(v, lane);
}

template <int lane>
void StoreLane(unsigned char* bytes, Lanes v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), GetLane<lane>(v));
}

inline Lanes Zero()
{
    return _mm256_setzero_si256();
}

inline Lanes Set8(int v)
{
    return _mm256_set1_epi8(static_cast<char>(v));
}

inline Lanes Set16(int v)
{
    return _mm256_set1_epi16(static_cast<short>(v));
}

inline Lanes And(Lanes a, Lanes b)
{
    return _mm256_and_si256(a, b);
}

inline Lanes Or(Lanes a, Lanes b)
{
    return _mm256_or_si256(a, b);
}

inline Lanes Add8(Lanes a, Lanes b)
{
    return _mm256_add_epi8(a, b);
}

// The sums of unsigned bytes, at most 255 each.
inline Lanes AddSaturated8(Lanes a, Lanes b)
{
    return _mm256_adds_epu8(a, b);
}

inline Lanes Subtract8(Lanes a, Lanes b)
{
    return _mm256_sub_epi8(a, b);
}

inline Lanes Add16(Lanes a, Lanes b)
{
    return _mm256_add_epi16(a, b);
}

// The high half of the unsigned product.
inline Lanes MultiplyHigh16(Lanes a, Lanes b)
{
    return _mm256_mulhi_epu16(a, b);
}

inline Lanes MultiplyLow16(Lanes a, Lanes b)
{
    return _mm256_mullo_epi16(a, b);
}

template <int bits>
Lanes ShiftLeft16(Lanes v)
{
    return _mm256_slli_epi16(v, bits);
}

template <int bits>
Lanes ShiftRight16(Lanes v)
{
    return _mm256_srli_epi16(v, bits);
}

inline Lanes ShiftRight16By(Lanes v, int bits)
{
    return _mm256_srl_epi16(v, _mm_cvtsi32_si128(bits));
}

// A byte of the mask with its top bit set gives 0.
inline Lanes Shuffle(Lanes v, Lanes mask)
{
    return _mm256_shuffle_epi8(v, mask);
}

// Words to bytes, saturated: those of a, then those of b, lane by lane.
inline Lanes Pack16(Lanes a, Lanes b)
{
    return _mm256_packus_epi16(a, b);
}

// The low halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackLow(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return _mm256_unpacklo_epi8(a, b);
    else if constexpr (unitBytes == 2)
        return _mm256_unpacklo_epi16(a, b);
    else if constexpr (unitBytes == 4)
        return _mm256_unpacklo_epi32(a, b);
    else
        return _mm256_unpacklo_epi64(a, b);
}

// The high halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackHigh(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return _mm256_unpackhi_epi8(a, b);
    else if constexpr (unitBytes == 2)
        return _mm256_unpackhi_epi16(a, b);
    else if constexpr (unitBytes == 4)
        return _mm256_unpackhi_epi32(a, b);
    else
        return _mm256_unpackhi_epi64(a, b);
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
    return _mm256_inserti128_si256(_mm256_castsi128_si256(LoadTwoHalves(bytes, step)),
                                   LoadTwoHalves(bytes + laneStep, step), 1);
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
    return _mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), places));
}

// One lane of a, then one of b.
template <int first, int second>
Lanes JoinLanes(Lanes a, Lanes b)
{
    return _mm256_permute2x128_si256(a, b, first | (second + 2) << 4);
}

inline Lanes Min8(Lanes a, Lanes b)
{
    return _mm256_min_epu8(a, b);
}

// Bytes of a times those of b, neighbours added to a word. Only b is signed.
inline Lanes MultiplyAdd8(Lanes a, Lanes b)
{
    return _mm256_maddubs_epi16(a, b);
}

inline Lanes ShiftLeft16By(Lanes v, int bits)
{
    return _mm256_sll_epi16(v, _mm_cvtsi32_si128(bits));
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

inline Lanes Set32(int v)
{
    return _mm256_set1_epi32(v);
}

// The last lane first.
inline Lanes TurnLanes(Lanes v)
{
    return _mm256_permute2x128_si256(v, v, 1);
}

} // namespace
} // namespace zvk::Pelkraft
