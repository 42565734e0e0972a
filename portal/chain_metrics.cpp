#include "portal/chain_metrics.h"

#include <numeric>

namespace zvk::Pelkraft {
namespace {

constexpr const char* unevenSource = "Equidistant distribution of conversion source failed";
constexpr const char* unevenResults = "Equidistant distribution of conversion results failed";

// The hops of a step that stands alone.
void SetOwnHops(ChainStep& step)
{
    const auto& [inputChunks, outputChunks, parameterBytes, ownRegion] = step.ratio;
    if (ownRegion)
        return;
    if (inputChunks > outputChunks) {
        if (inputChunks % outputChunks != 0)
            throw unevenResults;
        step.reduction = inputChunks / outputChunks;
    } else {
        if (outputChunks % inputChunks != 0)
            throw unevenSource;
        step.expansion = outputChunks / inputChunks;
    }
}

} // namespace

ChainMetrics::ChainMetrics(const ActiveSteps& active, const ImageRowFormat& source)
{
    Progress progress{source};
    for (std::size_t i = 0; i != active.count; ++i)
        Append(*active.facilities[i], progress);
    saveRatio = {progress.commonChunks, progress.hop};
    LayRegions(progress);
}

ChainMetrics ChainMetrics::SingleChunk(std::uint64_t pixelBytes)
{
    ChainMetrics metrics;
    metrics.regionCount = 1;
    metrics.regions[0].pixelBytes = pixelBytes;
    return metrics;
}

ChainMetrics ChainMetrics::Trail(std::uint64_t loadPixelBytes, std::uint64_t savePixelBytes)
{
    ChainMetrics metrics;
    metrics.regionCount = 2;
    metrics.regions[0].pixelBytes = loadPixelBytes;
    metrics.regions[1].pixelBytes = savePixelBytes;
    metrics.stepCount = 1;
    return metrics;
}

void ChainMetrics::Append(const ChunkConvertFacility& facility, Progress& progress)
{
    ChainStep& step = steps[stepCount];
    step.facility = &facility;
    step.format = progress.format;
    const IChunkConvertDescriptor* descriptor = facility.select(facility, step.format);
    descriptor->GetMetrics(step.ratio, facility, step.format);
    SetOwnHops(step);

    const std::uint64_t common = std::lcm(progress.commonChunks, step.ratio.inputChunks);
    step.multiples = common / step.ratio.inputChunks;
    GrowBatch(common / progress.commonChunks);
    ReconcileHop(progress.hop);
    ++stepCount;

    progress.hop = step.reduction;
    progress.commonChunks = step.multiples * step.ratio.outputChunks;
    descriptor->GetOutputFormat(progress.format, facility, step.format);
}

void ChainMetrics::GrowBatch(std::uint64_t factor)
{
    loadRatio.chunks *= factor;
    for (std::size_t i = 0; i != stepCount; ++i)
        steps[i].multiples *= factor;
}

// Makes the output hop of the steps so far and the input hop of the new one the same.
void ChainMetrics::ReconcileHop(std::uint64_t hop)
{
    ChainStep& step = steps[stepCount];
    if (hop < step.expansion) {
        SpreadEarlierSteps(step.expansion);
    } else if (hop > step.expansion) {
        step.expansion = hop;
        step.reduction =
            step.ratio.ownRegion ? 1 : step.ratio.inputChunks * hop / step.ratio.outputChunks;
    }
}

void ChainMetrics::SpreadEarlierSteps(std::uint64_t hop)
{
    for (std::size_t i = stepCount; i-- != 0;) {
        ChainStep& earlier = steps[i];
        earlier.reduction = hop;
        if (earlier.ratio.ownRegion)
            return;
        hop = hop * earlier.ratio.outputChunks / earlier.ratio.inputChunks;
        earlier.expansion = hop;
    }
    loadRatio.step = hop;
}

void ChainMetrics::LayRegions(const Progress& end)
{
    std::uint64_t carry = loadRatio.step;
    for (std::size_t i = 0; i != stepCount; ++i) {
        const ChainStep& step = steps[i];
        if (!step.ratio.ownRegion)
            continue;
        regions[regionCount++] = {step.ratio.inputChunks * step.expansion * step.multiples,
                                  PixelBytes(step.format), carry, step.expansion};
        carry = step.reduction;
    }
    regions[regionCount++] = {end.commonChunks * end.hop, PixelBytes(end.format), carry, end.hop};
}

} // namespace zvk::Pelkraft
