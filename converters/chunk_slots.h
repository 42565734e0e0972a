#pragma once

#include "common/chunk_header.h"
#include "common/inlining.h"
#include "common/units.h"

#include <cstdint>

// A method finds its slots and the next region from the header it is given. Internal linkage on
// purpose: files of the vector road include this too, and no code of theirs may serve the rest of
// the program.
namespace zvk::Pelkraft {
namespace {

PELKRAFT_ALWAYS_INLINE inline unsigned char* SlotsOf(void* chunkHeader)
{
    return static_cast<unsigned char*>(chunkHeader) + headerBytes;
}

PELKRAFT_ALWAYS_INLINE inline std::uint64_t PixelBytesOf(const void* chunkHeader)
{
    return static_cast<const ChunkHeader*>(chunkHeader)->pixelBytes;
}

// A step with a region of its own writes there. Chunks of the last region have none.
PELKRAFT_ALWAYS_INLINE inline void* NextRegionOf(void* chunkHeader)
{
    return static_cast<unsigned char*>(chunkHeader) +
           static_cast<const ChunkHeader*>(chunkHeader)->nextRegionOffset;
}

} // namespace
} // namespace zvk::Pelkraft
