#pragma once

#include <tmmintrin.h>

#include <cstddef>
#include <cstdint>

// The lane operations on 16-byte vectors, for SSSE3.
// Only for files built with these vector flags: all of it has internal linkage on purpose, so that
// the linker never takes code of these files for the rest of the program.
namespace zvk::Pelkraft {
namespace {

using Lanes = __m128i;
// A lane has 16 bytes; shuffles, unpacks and packs work inside lanes.
constexpr int laneCount = 1;

inline Lanes Load(const unsigned char* bytes)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// Lane i holds the 16 bytes at bytes + i * step.
inline Lanes LoadSpread(const unsigned char* bytes, std::ptrdiff_t)
{
    return Load(bytes);
}

// The same 16 bytes in every lane.
inline Lanes Broadcast(const unsigned char* bytes)
{
    return Load(bytes);
}

inline void Store(unsigned char* bytes, Lanes v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), v);
}

template <int lane>
__m128i GetLane(Lanes v)
{
    static_assert(lane == 0);
    return v;
}

template <int lane>
void StoreLane(unsigned char* bytes, Lanes v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), GetLane<lane>(v));
}

inline Lanes Zero()
{
    return _mm_setzero_si128();
}

inline Lanes Set8(int v)
{
    return _mm_set1_epi8(static_cast<char>(v));
}

inline Lanes Set16(int v)
{
    return _mm_set1_epi16(static_cast<short>(v));
}

inline Lanes And(Lanes a, Lanes b)
{
    return _mm_and_si128(a, b);
}

inline Lanes Or(Lanes a, Lanes b)
{
    return _mm_or_si128(a, b);
}

inline Lanes Add8(Lanes a, Lanes b)
{
    return _mm_add_epi8(a, b);
}

// The sums of unsigned bytes, at most 255 each.
inline Lanes AddSaturated8(Lanes a, Lanes b)
{
    return _mm_adds_epu8(a, b);
}

inline Lanes Subtract8(Lanes a, Lanes b)
{
    return _mm_sub_epi8(a, b);
}

inline Lanes Add16(Lanes a, Lanes b)
{
    return _mm_add_epi16(a, b);
}

// The high half of the unsigned product.
inline Lanes MultiplyHigh16(Lanes a, Lanes b)
{
    return _mm_mulhi_epu16(a, b);
}

inline Lanes MultiplyLow16(Lanes a, Lanes b)
{
    return _mm_mullo_epi16(a, b);
}

template <int bits>
Lanes ShiftLeft16(Lanes v)
{
    return _mm_slli_epi16(v, bits);
}

template <int bits>
Lanes ShiftRight16(Lanes v)
{
    return _mm_srli_epi16(v, bits);
}

inline Lanes ShiftRight16By(Lanes v, int bits)
{
    return _mm_srl_epi16(v, _mm_cvtsi32_si128(bits));
}

// A byte of the mask with its top bit set gives 0.
inline Lanes Shuffle(Lanes v, Lanes mask)
{
    return _mm_shuffle_epi8(v, mask);
}

// Words to bytes, saturated: those of a, then those of b, lane by lane.
inline Lanes Pack16(Lanes a, Lanes b)
{
    return _mm_packus_epi16(a, b);
}

// The low halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackLow(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return _mm_unpacklo_epi8(a, b);
    else if constexpr (unitBytes == 2)
        return _mm_unpacklo_epi16(a, b);
    else if constexpr (unitBytes == 4)
        return _mm_unpacklo_epi32(a, b);
    else
        return _mm_unpacklo_epi64(a, b);
}

// The high halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackHigh(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return _mm_unpackhi_epi8(a, b);
    else if constexpr (unitBytes == 2)
        return _mm_unpackhi_epi16(a, b);
    else if constexpr (unitBytes == 4)
        return _mm_unpackhi_epi32(a, b);
    else
        return _mm_unpackhi_epi64(a, b);
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
inline Lanes LoadHalves(const unsigned char* bytes, std::ptrdiff_t step, std::ptrdiff_t)
{
    return LoadTwoHalves(bytes, step);
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
    return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), places));
}

inline Lanes Min8(Lanes a, Lanes b)
{
    return _mm_min_epu8(a, b);
}

// Bytes of a times those of b, neighbours added to a word. Only b is signed.
inline Lanes MultiplyAdd8(Lanes a, Lanes b)
{
    return _mm_maddubs_epi16(a, b);
}

inline Lanes ShiftLeft16By(Lanes v, int bits)
{
    return _mm_sll_epi16(v, _mm_cvtsi32_si128(bits));
}

// Unit u goes to lane u % laneCount, place u / laneCount.
template <int unitBytes>
Lanes Deal(Lanes v)
{
    return v;
}

// The way back from Deal.
template <int unitBytes>
Lanes Gather(Lanes v)
{
    return v;
}

using LaneMask = std::uint16_t;

// The low bits of the bytes, the first byte's lowest.
inline LaneMask LowBits(Lanes v)
{
    return static_cast<LaneMask>(_mm_movemask_epi8(_mm_slli_epi16(v, 7)));
}

inline Lanes Set32(int v)
{
    return _mm_set1_epi32(v);
}

// The last lane first.
inline Lanes TurnLanes(Lanes v)
{
    return v;
}

} // namespace
} // namespace zvk::Pelkraft
