#include "portal/hetero_convert_composite.h"

#include "portal/last_slot_mask.h"
#include "portal/relocator.h"
#include "portal/row_sides.h"

#include <algorithm>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr const char* noRelocationBuffer =
    "zvk::Pelkraft::ConversionPortal memory allocation failed for relocation buffer";
constexpr std::uint64_t relocationSpare = 64;

void CopySlots(ChunkHeader* from, ChunkHeader* to)
{
    std::memcpy(GetSlots(to), GetSlots(from),
                static_cast<std::size_t>(SlotAreaBytes(from->pixelBytes)));
}

void ClearSlots(ChunkHeader* chunk)
{
    std::memset(GetSlots(chunk), 0, static_cast<std::size_t>(SlotAreaBytes(chunk->pixelBytes)));
}

} // namespace

HeteroConvertComposite::HeteroConvertComposite(const ConversionJob& newJob,
                                               const ChainMetrics& newMetrics)
    : job(newJob), metrics(newMetrics),
      loadFacility(ChunkLoadFacilityInternal::Create(job.source, job.sseVersion)),
      saveFacility(ChunkSaveFacilityInternal::Create(job.destination, job.sseVersion)),
      loadMethod(loadFacility.descriptor->GetLoadMethod(loadFacility)),
      saveMethod(saveFacility.descriptor->GetLoadMethod(saveFacility)),
      loadStep(loadFacility.descriptor->GetChunkStep(loadFacility)),
      saveStep(saveFacility.descriptor->GetChunkStep(saveFacility)),
      relocatesChunks(job.source.reversed && job.source.layout == LayoutInterleaved),
      buffer(metrics, RowSide(loadFacility, 0), RowSide(saveFacility, 0)),
      batchCount(CountBatches()), loadWalk(WalkOf(0, metrics.GetLoadRatio())),
      saveWalk(WalkOf(metrics.GetRegionCount() - 1, metrics.GetSaveRatio())),
      source{job.sourceData,
             static_cast<std::int64_t>(loadFacility.descriptor->GetFirstChunkOffset(loadFacility))},
      destination(job.destinationData)
{
    PrepareSteps();
    if (job.source.reversed && IsPacked(job.source))
        RelocatePackedSource();
    PrepareTrail();
}

void HeteroConvertComposite::Run()
{
    for (std::uint64_t i = 0; i != batchCount; ++i) {
        LoadChunks(loadWalk.chunks);
        ConvertBatch();
        SaveChunks(saveWalk.chunks);
    }
    if (trailingBuffer)
        RunTrailingBatch();
}

std::uint64_t HeteroConvertComposite::CountBatches() const
{
    return std::min(CountWholeChunks(job.source) / metrics.GetLoadRatio().chunks,
                    CountWholeChunks(job.destination) / metrics.GetSaveRatio().chunks);
}

void HeteroConvertComposite::PrepareSteps()
{
    std::size_t region = 0;
    for (std::size_t i = 0; i != metrics.GetStepCount(); ++i) {
        const ChainStep& step = metrics.GetStep(i);
        ChunkHeader* firstChunk = buffer.GetChunk(region);
        if (step.ratio.ownRegion)
            ++region;
        const ChunkStepGeometry geometry{step.expansion, step.reduction, firstChunk->chunkStride,
                                         buffer.GetChunk(region)->chunkStride};
        void* parameters = buffer.GetParameterBlock(i);
        const IChunkConvertDescriptor* descriptor =
            step.facility->select(*step.facility, step.format);
        const ConvertMethod method =
            descriptor->GetConvertMethod(*step.facility, step.format, geometry, parameters);
        steps[i] = {method, parameters, firstChunk, step.multiples,
                    step.ratio.inputChunks * geometry.inputChunkStride * step.expansion};
    }
}

void HeteroConvertComposite::PrepareTrail()
{
    const std::uint64_t batchSlots = batchCount * slotsPerChunk;
    loadRest = CountColumns(job.source, job.source.activeWidth) - batchSlots * loadWalk.chunks;
    saveRest =
        CountColumns(job.destination, job.destination.activeWidth) - batchSlots * saveWalk.chunks;
    if (loadRest == 0 && saveRest == 0)
        return;
    const ChainRegion& lastRegion = metrics.GetRegion(metrics.GetRegionCount() - 1);
    trailingBuffer.emplace(
        ChainMetrics::Trail(metrics.GetRegion(0).pixelBytes, lastRegion.pixelBytes),
        StripSide(loadFacility, loadFacility.descriptor->GetPartialChunkSize(loadFacility)),
        StripSide(saveFacility, saveFacility.descriptor->GetPartialChunkSize(saveFacility)));
}

// A reversed packed plane ends inside a byte: the row is rewritten so that it ends at one.
void HeteroConvertComposite::RelocatePackedSource()
{
    const std::uint64_t bytes = loadFacility.columns * PixelBytes(job.source);
    relocationBuffer.reset(AllocateAligned(bytes + relocationSpare, bufferAlignment));
    if (relocationBuffer == nullptr)
        throw noRelocationBuffer;
    const auto lastByteBits = static_cast<std::uint64_t>(job.source.width * job.source.bits & 7);
    Relocator(relocationBuffer.get(),
              {job.sourceData, static_cast<std::int64_t>(bytes), lastByteBits, job.source.bits});
    source.row = relocationBuffer.get();
}

HeteroConvertComposite::EndWalk HeteroConvertComposite::WalkOf(std::size_t region,
                                                               const ChainRatio& ratio) const
{
    ChunkHeader* firstChunk = buffer.GetChunk(region);
    return {firstChunk, ratio.chunks, ratio.step * firstChunk->chunkStride};
}

void HeteroConvertComposite::LoadChunk(const unsigned char* row, ChunkHeader* chunk) const
{
    loadMethod(relocatesChunks ? RelocateChunk(row, chunk) : row, chunk);
}

// Answers with the chunk after the last one loaded.
ChunkHeader* HeteroConvertComposite::LoadChunks(std::uint64_t count)
{
    ChunkHeader* chunk = loadWalk.firstChunk;
    for (std::uint64_t i = 0; i != count; ++i) {
        LoadChunk(source.row + source.offset, chunk);
        source.offset += loadStep;
        chunk = Advance(chunk, loadWalk.hop);
    }
    return chunk;
}

void HeteroConvertComposite::SaveChunks(std::uint64_t count)
{
    ChunkHeader* chunk = saveWalk.firstChunk;
    for (std::uint64_t i = 0; i != count; ++i) {
        saveMethod(chunk, destination);
        destination += saveStep;
        chunk = Advance(chunk, saveWalk.hop);
    }
}

void HeteroConvertComposite::ConvertBatch() const
{
    for (std::size_t i = 0; i != metrics.GetStepCount(); ++i) {
        const PreparedStep& step = steps[i];
        ChunkHeader* chunk = step.firstChunk;
        for (std::uint64_t run = 0; run != step.runs; ++run) {
            step.method(chunk, step.parameters);
            chunk = Advance(chunk, step.hop);
        }
    }
}

void HeteroConvertComposite::RunTrailingBatch()
{
    LoadTrail();
    ConvertBatch();
    if (saveRest != 0)
        SaveTrail();
}

void HeteroConvertComposite::LoadTrail()
{
    std::uint64_t filled = std::min(loadRest / slotsPerChunk, loadWalk.chunks);
    ChunkHeader* chunk = LoadChunks(filled);
    const std::uint64_t count = loadRest % slotsPerChunk;
    if (count != 0 && filled != loadWalk.chunks) {
        void* strip = trailingBuffer->GetLoadStrip();
        ChunkHeader* staged = trailingBuffer->GetChunk(0);
        loadFacility.descriptor->LoadPartialChunk(loadFacility, source, strip, count);
        loadMethod(strip, staged);
        // The strip's turn in the walk: aligned as it is, it is loaded once more as it stands.
        LoadChunk(static_cast<const unsigned char*>(strip), staged);
        CopySlots(staged, chunk);
        chunk = Advance(chunk, loadWalk.hop);
        ++filled;
    }
    for (; filled != loadWalk.chunks; ++filled) {
        ClearSlots(chunk);
        chunk = Advance(chunk, loadWalk.hop);
    }
}

void HeteroConvertComposite::SaveTrail()
{
    ChunkHeader* lastChunk =
        Advance(saveWalk.firstChunk, (saveRest - 1) / slotsPerChunk * saveWalk.hop);
    MaskLastSlot(lastChunk, (saveRest - 1) % slotsPerChunk, job.destination,
                 job.destination.activeWidth);
    SaveChunks(saveRest / slotsPerChunk);
    const std::uint64_t count = saveRest % slotsPerChunk;
    if (count == 0)
        return;
    ChunkHeader* staged = trailingBuffer->GetChunk(1);
    void* strip = trailingBuffer->GetSaveStrip();
    CopySlots(lastChunk, staged);
    saveMethod(staged, strip);
    saveFacility.descriptor->SavePartialChunk(saveFacility, strip, destination, count);
}

} // namespace zvk::Pelkraft
