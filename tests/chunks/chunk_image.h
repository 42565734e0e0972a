#pragma once

#include "chunks/chunk_methods.h"
#include "common/image_row_format.h"
#include "tests/support/guarded_buffer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;

// A number that no method can take for a size without a fault.
constexpr std::uint64_t poison = 0x7A7A7A7A7A7A7A7A;

// The fields of a chunk's header; poison stands in each that a method has no business to read.
struct HeaderFields
{
    std::uint64_t loadUnitCount = poison;
    std::uint64_t loadPlanePitch = poison;
    std::uint64_t saveUnitCount = poison;
    std::uint64_t savePlanePitch = poison;
    std::uint64_t pixelBytes = poison;
};

// One way to move a chunk, with the header that it needs.
struct Way
{
    std::string name;
    ChunkMethod method;
    HeaderFields header;
    // The portable road leaves the bytes after a pixel alone.
    bool keepsPads;
};

// A row of 16 pixels; an interleaved one is one plane of whole pixels.
struct ChunkRow
{
    std::int32_t layout;
    std::size_t planes;
    std::size_t sampleBytes;
    std::size_t pitch;

    std::size_t PixelBytes() const { return planes * sampleBytes; }
};

ChunkRow InterleavedRow(std::size_t pixelBytes);
ChunkRow PlanarRow(std::size_t planes, std::size_t sampleBytes, std::size_t gap = 0);

// Every class that can move this row: the portable one, the one that is selected on the vector
// road, and the one that takes any size at run time.
std::vector<Way> WaysOf(End end, const ChunkRow& row);

constexpr std::size_t firstSlot = 64;

std::size_t SlotBytes(std::size_t pixelBytes);

// A chunk between forbidden pages: its header, and slots full of one byte.
GuardedBuffer MakeChunk(std::size_t pixelBytes, const HeaderFields& header, unsigned char fill,
                        Flush flush);

// The same with pixels in the slots, 16 of them, side by side in pixels.
GuardedBuffer MakeFilledChunk(const Bytes& pixels, std::size_t pixelBytes,
                              const HeaderFields& header, unsigned char pad, Flush flush);

// The pixels of the slots side by side, and the bytes after them.
Bytes PixelsOf(const GuardedBuffer& chunk, std::size_t pixelBytes);
Bytes PadsOf(const GuardedBuffer& chunk, std::size_t pixelBytes);
Bytes HeaderOf(const GuardedBuffer& chunk);

} // namespace zvk::Pelkraft::TestSupport
