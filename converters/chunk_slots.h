#pragma once

#include "common/chunk_header.h"
#include "common/units.h"

#include <cstdint>

// What a method finds from the header it is given. Internal linkage on purpose: files of the
// vector road include this too, and no code of theirs may serve the rest of the program.
namespace zvk::Pelkraft {
namespace {

[[gnu::always_inline]] inline unsigned char* SlotsOf(void* chunkHeader)
{
    return static_cast<unsigned char*>(chunkHeader) + headerBytes;
}

[[gnu::always_inline]] inline std::uint64_t PixelBytesOf(const void* chunkHeader)
{
    return static_cast<const ChunkHeader*>(chunkHeader)->pixelBytes;
}

// Where a step with a region of its own writes. Not for chunks of the last region.
[[gnu::always_inline]] inline void* NextRegionOf(void* chunkHeader)
{
    return static_cast<unsigned char*>(chunkHeader) +
           static_cast<const ChunkHeader*>(chunkHeader)->nextRegionOffset;
}

} // namespace
} // namespace zvk::Pelkraft
