#pragma once

#include "common/intrinsics_vector.h"

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

template <int lane>
__m128i GetLane(Lanes v)
{
    static_assert(lane == 0);
    return v;
}

} // namespace
} // namespace zvk::Pelkraft

#define PELKRAFT_LANES(name) _mm_##name
#define PELKRAFT_BITS(name) _mm_##name##_si128
#define PELKRAFT_FLOATS _mm_castsi128_ps
#include "common/lane_operations.h"

namespace zvk::Pelkraft {
namespace {

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

// Half h of lane i holds the 8 bytes at bytes + h * step + i * laneStep.
inline Lanes LoadHalves(const unsigned char* bytes, std::ptrdiff_t step, std::ptrdiff_t)
{
    return LoadTwoHalves(bytes, step);
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

// The last lane first.
inline Lanes TurnLanes(Lanes v)
{
    return v;
}

// Subtracts 1 where an unsigned byte is at most its limit.
inline Lanes CountDownWhereAtMost8(Lanes counts, Lanes v, Lanes limits)
{
    return _mm_add_epi8(counts, _mm_cmpeq_epi8(_mm_min_epu8(v, limits), v));
}

// The same in words.
inline Lanes CountDownWhereAtMost16(Lanes counts, Lanes v, Lanes limits)
{
    return _mm_add_epi16(counts, _mm_cmpeq_epi16(_mm_subs_epu16(v, limits), Zero()));
}

} // namespace
} // namespace zvk::Pelkraft
