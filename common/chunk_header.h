#pragma once

#include "common/units.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace zvk::Pelkraft {

// Stands in front of the 16 pixel slots of each chunk. Methods get no other record, so the sizes
// that they need at run time live here.
struct ChunkHeader
{
    std::uint64_t loadUnitCount;
    std::uint64_t loadPlanePitch;
    std::uint64_t saveUnitCount;
    std::uint64_t savePlanePitch;
    std::uint64_t pixelBytes;
    std::uint64_t chunkStride;
    // From this header to the matching one in the next region, or noNextRegion.
    std::int64_t nextRegionOffset;
    std::uint64_t reserved;
};

constexpr std::int64_t noNextRegion = std::numeric_limits<std::int64_t>::max();

static_assert(sizeof(ChunkHeader) == headerBytes);
static_assert(offsetof(ChunkHeader, pixelBytes) == 32);
static_assert(offsetof(ChunkHeader, nextRegionOffset) == 48);

} // namespace zvk::Pelkraft
