#pragma once

#include "tests/support/guarded_buffer.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;

// Chunks of one pixel size. Of each region every outStep-th chunk is linked, to every inStep-th of
// the region after it.
struct RegionPlan
{
    std::size_t pixelBytes;
    std::size_t chunkCount = 1;
    std::size_t inStep = 1;
    std::size_t outStep = 1;
};

// The order in which the regions lie in memory: a link may lead either way.
enum class RegionOrder
{
    Forward,
    Backward,
};

// Regions of chunks, laid out by hand in one buffer of exactly their size. All bytes are random
// but the three fields of the headers that a step reads.
class ChunkMemory
{
public:
    ChunkMemory(const std::vector<RegionPlan>& newRegions, std::uint32_t seed,
                Flush flush = Flush::AtEnd, RegionOrder order = RegionOrder::Forward);

    unsigned char* Header(std::size_t region, std::size_t chunk = 0) const;
    // Positions in bytes().
    std::size_t SlotStart(std::size_t region, std::size_t chunk, std::size_t slot) const;
    std::size_t SlotBytes(std::size_t region) const;
    std::size_t Stride(std::size_t region) const;
    // Writes into the slots of a chunk.
    void SetByte(std::size_t position, unsigned char value) const
    {
        buffer.data()[position] = value;
    }
    Bytes bytes() const { return buffer.bytes(); }

private:
    void WriteHeaders() const;
    void WriteField(std::size_t position, std::uint64_t value) const;

    std::vector<RegionPlan> regions;
    std::vector<std::size_t> regionStarts;
    GuardedBuffer buffer;
};

} // namespace zvk::Pelkraft::TestSupport
