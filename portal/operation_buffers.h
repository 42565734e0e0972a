#pragma once

#include "common/aligned_memory.h"
#include "common/chunk_header.h"
#include "portal/chain_metrics.h"
#include "portal/offset_table.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// All memory that a conversion works in is aligned to this.
constexpr std::size_t bufferAlignment = 64;

// Each chunk's header says this of one end of the conversion.
struct SideGeometry
{
    std::uint64_t unitCount;
    std::uint64_t planePitch;
    // 0 where no partial chunk is staged.
    std::uint64_t stripBytes;
};

// A conversion works in one allocation: chunks region after region, the offset table, then the
// strips and the parameter blocks. It is zeroed, so that no foreign memory reaches a row.
class OperationBufferContainer
{
public:
    // Throws std::bad_alloc.
    OperationBufferContainer(const ChainMetrics& metrics, const SideGeometry& load,
                             const SideGeometry& save);

    // The region's first chunk.
    ChunkHeader* GetChunk(std::size_t region) const;
    std::uint64_t GetSize() const { return size; }

    // Null if the block is empty.
    void* GetLoadStrip() const { return table.GetBlock(data.get(), 0); }
    void* GetSaveStrip() const { return table.GetBlock(data.get(), 1); }
    void* GetParameterBlock(std::size_t step) const { return table.GetBlock(data.get(), 2 + step); }

private:
    void SetEntries(const ChainMetrics& metrics, const SideGeometry& load,
                    const SideGeometry& save);
    void WriteRegions(const ChainMetrics& metrics, const ChunkHeader& prototype);

    AlignedMemory<bufferAlignment> data;
    std::uint64_t size = 0;
    OffsetTable table;
    std::uint64_t regionOffsets[maxActiveSteps + 1] = {};
};

inline unsigned char* GetSlots(ChunkHeader* chunk)
{
    return reinterpret_cast<unsigned char*>(chunk + 1);
}

// Answers with the chunk that lies this many bytes after another.
inline ChunkHeader* Advance(ChunkHeader* chunk, std::uint64_t bytes)
{
    return reinterpret_cast<ChunkHeader*>(reinterpret_cast<unsigned char*>(chunk) + bytes);
}

} // namespace zvk::Pelkraft
