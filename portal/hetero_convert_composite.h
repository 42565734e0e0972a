#pragma once

#include "chunks/chunk_facility.h"
#include "portal/conversion_portal.h"
#include "portal/operation_buffers.h"

#include <array>
#include <cstdint>
#include <optional>

namespace zvk::Pelkraft {

// A conversion of one to four steps, batch by batch through one buffer.
class HeteroConvertComposite
{
public:
    HeteroConvertComposite(const ConversionJob& newJob, const ChainMetrics& newMetrics);
    void Run();

private:
    // One step with all that its loop needs.
    struct PreparedStep
    {
        ConvertMethod method;
        const void* parameters;
        ChunkHeader* firstChunk;
        std::uint64_t runs;
        // Bytes from one run's first chunk to the next one's.
        std::uint64_t hop;
    };

    // The chunks that one end of the chain visits in a batch.
    struct EndWalk
    {
        ChunkHeader* firstChunk;
        std::uint64_t chunks;
        std::uint64_t hop;
    };

    std::uint64_t CountBatches() const;
    void PrepareSteps();
    void PrepareTrail();
    void RelocatePackedSource();
    EndWalk WalkOf(std::size_t region, const ChainRatio& ratio) const;

    void LoadChunk(const unsigned char* row, ChunkHeader* chunk) const;
    ChunkHeader* LoadChunks(std::uint64_t count);
    void SaveChunks(std::uint64_t count);
    void ConvertBatch() const;
    void RunTrailingBatch();
    void LoadTrail();
    void SaveTrail();

    const ConversionJob& job;
    const ChainMetrics& metrics;
    ChunkLoadFacilityInternal loadFacility;
    ChunkSaveFacilityInternal saveFacility;
    LoadMethod loadMethod;
    SaveMethod saveMethod;
    // Bytes along the rows from chunk to chunk.
    std::int64_t loadStep;
    std::int64_t saveStep;
    // The chunks of a reversed row begin at aligned places only by chance, so they are moved first.
    bool relocatesChunks;
    OperationBufferContainer buffer;
    std::uint64_t batchCount;
    std::uint64_t loadRest = 0;
    std::uint64_t saveRest = 0;
    // Built before a pixel moves, though they are used last.
    std::optional<OperationBufferContainer> trailingBuffer;
    AlignedMemory<bufferAlignment> relocationBuffer;
    std::array<PreparedStep, maxActiveSteps> steps{};
    EndWalk loadWalk;
    EndWalk saveWalk;
    SourcePosition source;
    unsigned char* destination;
};

} // namespace zvk::Pelkraft
