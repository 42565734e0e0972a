#pragma once

#include "common/image_row_format.h"
#include "converters/convert_facility.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::size_t maxActiveSteps = 4;

// The records of a chain that stand for a step, in the chain's order.
struct ActiveSteps
{
    std::array<const ChunkConvertFacility*, maxActiveSteps> facilities{};
    std::size_t count = 0;
};

// Calls of one end in a batch, and the chunks from one call's chunk to the next one's.
struct ChainRatio
{
    std::uint64_t chunks = 1;
    std::uint64_t step = 1;
};

// A stretch of chunks of one size. The steps are the hops, in chunks, at which it is written by
// the step before it and read by the step after it.
struct ChainRegion
{
    std::uint64_t chunkCount = 1;
    std::uint64_t pixelBytes = 1;
    std::uint64_t inStep = 1;
    std::uint64_t outStep = 1;
};

// One converter in the batch.
struct ChainStep
{
    const ChunkConvertFacility* facility = nullptr;
    ImageRowFormat format;
    ChunkConvertMetrics ratio{1, 1, 0, true};
    // Chunks of hop on the input and on the output side.
    std::uint64_t expansion = 1;
    std::uint64_t reduction = 1;
    // Runs in one batch.
    std::uint64_t multiples = 1;
};

// The shape of one batch: the smallest group of chunks in which every step of a chain sees whole
// groups of its input, and where in the buffer they stand.
class ChainMetrics
{
public:
    // Throws "Equidistant distribution of conversion source failed" or "Equidistant distribution
    // of conversion results failed" if a step's chunk counts are no multiple of each other.
    ChainMetrics(const ActiveSteps& active, const ImageRowFormat& source);

    // One chunk and no step.
    static ChainMetrics SingleChunk(std::uint64_t pixelBytes);
    // Two single chunks, in which the pixels after the last batch are staged.
    static ChainMetrics Trail(std::uint64_t loadPixelBytes, std::uint64_t savePixelBytes);

    const ChainRatio& GetLoadRatio() const { return loadRatio; }
    const ChainRatio& GetSaveRatio() const { return saveRatio; }
    std::size_t GetRegionCount() const { return regionCount; }
    const ChainRegion& GetRegion(std::size_t index) const { return regions[index]; }
    std::size_t GetStepCount() const { return stepCount; }
    const ChainStep& GetStep(std::size_t index) const { return steps[index]; }

private:
    // These values go from step to step while the chain is sized.
    struct Progress
    {
        ImageRowFormat format;
        std::uint64_t commonChunks = 1;
        std::uint64_t hop = 1;
    };

    ChainMetrics() = default;
    void Append(const ChunkConvertFacility& facility, Progress& progress);
    void GrowBatch(std::uint64_t factor);
    void ReconcileHop(std::uint64_t hop);
    void SpreadEarlierSteps(std::uint64_t hop);
    void LayRegions(const Progress& end);

    ChainRatio loadRatio;
    ChainRatio saveRatio;
    std::size_t regionCount = 0;
    std::array<ChainRegion, maxActiveSteps + 1> regions;
    std::size_t stepCount = 0;
    std::array<ChainStep, maxActiveSteps> steps;
};

} // namespace zvk::Pelkraft
