#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// The code that serves a call. Ordered: each road may do what the roads before it do.
enum class Road : std::uint8_t
{
    // Plain C++, for any processor.
    Portable,
    // 16-byte vectors with the byte shuffle of SSSE3.
    Vector,
    // 32-byte vectors of AVX2.
    Avx2,
    // 64-byte vectors of AVX-512 with F, BW, VL and VBMI.
    Avx512,
};

// Code that names a vector class or kernel does so only where this is true.
#ifdef PELKRAFT_VECTOR_ROAD
constexpr bool hasVectorRoad = true;
#else
constexpr bool hasVectorRoad = false;
#endif

// The same for what is built for AVX2 and for AVX-512.
#ifdef PELKRAFT_WIDE_ROADS
constexpr bool hasWideRoads = true;
#else
constexpr bool hasWideRoads = false;
#endif

// The road at a level that zvk::SystemTools::GetSseVersion reports, or the last one before it that
// is built. A caller that forces the portable road passes 0.
constexpr Road RoadOf(std::int32_t sseVersion)
{
    if (!hasVectorRoad || sseVersion < 3)
        return Road::Portable;
    if (!hasWideRoads || sseVersion < 6)
        return Road::Vector;
    return sseVersion < 7 ? Road::Avx2 : Road::Avx512;
}

} // namespace zvk::Pelkraft
