#pragma once

#include "chunks/chunk_facility.h"
#include "portal/conversion_portal.h"
#include "portal/operation_buffers.h"

#include <cstdint>
#include <optional>

namespace zvk::Pelkraft {

// A conversion without a step: one chunk at a time from row to row.
class CopyComposite
{
public:
    explicit CopyComposite(const ConversionJob& newJob);
    void Run();

private:
    std::uint64_t CountRest() const;
    void MoveWholeChunks();
    void MoveRest();

    const ConversionJob& job;
    ChunkLoadFacilityInternal loadFacility;
    ChunkSaveFacilityInternal saveFacility;
    LoadMethod loadMethod;
    SaveMethod saveMethod;
    std::uint64_t wholeChunks;
    std::uint64_t rest;
    OperationBufferContainer buffer;
    // Built before a pixel moves, though it is used last.
    std::optional<OperationBufferContainer> trailingBuffer;
    SourcePosition source;
    unsigned char* destination;
};

} // namespace zvk::Pelkraft
