#pragma once

#include <cstddef>

// The lane operations whose intrinsics have one name at every width, but for the prefix that the
// including header gives them: it defines Lanes and GetLane, PELKRAFT_LANES(name) for an operation
// on units, PELKRAFT_BITS(name) for one on the whole vector, and PELKRAFT_FLOATS for the vector
// seen as floats. All of it has internal linkage on purpose, as in those headers.
namespace zvk::Pelkraft {
namespace {

inline Lanes Load(const unsigned char* bytes)
{
    return PELKRAFT_BITS(loadu)(reinterpret_cast<const Lanes*>(bytes));
}

inline void Store(unsigned char* bytes, Lanes v)
{
    PELKRAFT_BITS(storeu)(reinterpret_cast<Lanes*>(bytes), v);
}

template <int lane>
void StoreLane(unsigned char* bytes, Lanes v)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), GetLane<lane>(v));
}

// Past the cache. The address is a multiple of the vector's bytes.
inline void StoreStreaming(unsigned char* bytes, Lanes v)
{
    PELKRAFT_BITS(stream)(reinterpret_cast<Lanes*>(bytes), v);
}

inline Lanes Zero()
{
    return PELKRAFT_BITS(setzero)();
}

inline Lanes Set8(int v)
{
    return PELKRAFT_LANES(set1_epi8)(static_cast<char>(v));
}

inline Lanes Set16(int v)
{
    return PELKRAFT_LANES(set1_epi16)(static_cast<short>(v));
}

inline Lanes Set32(int v)
{
    return PELKRAFT_LANES(set1_epi32)(v);
}

inline Lanes And(Lanes a, Lanes b)
{
    return PELKRAFT_BITS(and)(a, b);
}

inline Lanes Or(Lanes a, Lanes b)
{
    return PELKRAFT_BITS(or)(a, b);
}

inline Lanes Xor(Lanes a, Lanes b)
{
    return PELKRAFT_BITS(xor)(a, b);
}

inline Lanes Add8(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(add_epi8)(a, b);
}

// The sums of unsigned bytes, at most 255 each.
inline Lanes AddSaturated8(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(adds_epu8)(a, b);
}

inline Lanes Subtract8(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(sub_epi8)(a, b);
}

inline Lanes Add16(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(add_epi16)(a, b);
}

// The high half of the unsigned product.
inline Lanes MultiplyHigh16(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(mulhi_epu16)(a, b);
}

inline Lanes MultiplyLow16(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(mullo_epi16)(a, b);
}

template <int bits>
Lanes ShiftLeft16(Lanes v)
{
    return PELKRAFT_LANES(slli_epi16)(v, bits);
}

template <int bits>
Lanes ShiftRight16(Lanes v)
{
    return PELKRAFT_LANES(srli_epi16)(v, bits);
}

inline Lanes ShiftRight16By(Lanes v, int bits)
{
    return PELKRAFT_LANES(srl_epi16)(v, _mm_cvtsi32_si128(bits));
}

inline Lanes ShiftLeft16By(Lanes v, int bits)
{
    return PELKRAFT_LANES(sll_epi16)(v, _mm_cvtsi32_si128(bits));
}

// A byte of the mask with its top bit set gives 0.
inline Lanes Shuffle(Lanes v, Lanes mask)
{
    return PELKRAFT_LANES(shuffle_epi8)(v, mask);
}

// Words to bytes, saturated: those of a, then those of b, lane by lane.
inline Lanes Pack16(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(packus_epi16)(a, b);
}

// The low halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackLow(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return PELKRAFT_LANES(unpacklo_epi8)(a, b);
    else if constexpr (unitBytes == 2)
        return PELKRAFT_LANES(unpacklo_epi16)(a, b);
    else if constexpr (unitBytes == 4)
        return PELKRAFT_LANES(unpacklo_epi32)(a, b);
    else
        return PELKRAFT_LANES(unpacklo_epi64)(a, b);
}

// The high halves of both, unit by unit in turn.
template <int unitBytes>
Lanes UnpackHigh(Lanes a, Lanes b)
{
    if constexpr (unitBytes == 1)
        return PELKRAFT_LANES(unpackhi_epi8)(a, b);
    else if constexpr (unitBytes == 2)
        return PELKRAFT_LANES(unpackhi_epi16)(a, b);
    else if constexpr (unitBytes == 4)
        return PELKRAFT_LANES(unpackhi_epi32)(a, b);
    else
        return PELKRAFT_LANES(unpackhi_epi64)(a, b);
}

// The 8 bytes at bytes, then the 8 at bytes + step.
inline __m128i LoadTwoHalves(const unsigned char* bytes, std::ptrdiff_t step)
{
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes));
    const void* second = bytes + step;
    return _mm_castpd_si128(
        _mm_loadh_pd(_mm_castsi128_pd(low), static_cast<const double*>(second)));
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
    return PELKRAFT_BITS(castps)(
        PELKRAFT_LANES(shuffle_ps)(PELKRAFT_FLOATS(a), PELKRAFT_FLOATS(b), places));
}

inline Lanes Min8(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(min_epu8)(a, b);
}

// Bytes of a times those of b, neighbours added to a word. Only b is signed.
inline Lanes MultiplyAdd8(Lanes a, Lanes b)
{
    return PELKRAFT_LANES(maddubs_epi16)(a, b);
}

} // namespace
} // namespace zvk::Pelkraft

#undef PELKRAFT_LANES
#undef PELKRAFT_BITS
#undef PELKRAFT_FLOATS
