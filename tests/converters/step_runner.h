#pragma once

#include "converters/convert_facility.h"
#include "tests/support/guarded_buffer.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

struct Road
{
    const char* name;
    std::int32_t sseVersion;
    bool isVector;
};

// The portable road, and the vector road where the build and the processor have it.
std::vector<Road> AvailableRoads();
bool HasVectorRoad();

ImageRowFormat FormatOf(std::int32_t bits, std::size_t channels,
                        std::int32_t layout = LayoutInterleaved);

// A step with the record and the format that it is asked with.
struct StepCall
{
    ChunkConvertFacility facility;
    ImageRowFormat input;
    ChunkStepGeometry geometry;
};

// Asks the descriptor for its method, with a block of exactly the size it wants, and runs it once.
void RunDescriptor(const IChunkConvertDescriptor& descriptor, const StepCall& call,
                   void* firstChunkHeader);
// The same with the descriptor that the record selects.
void RunStep(const StepCall& call, void* firstChunkHeader);

} // namespace zvk::Pelkraft::TestSupport
