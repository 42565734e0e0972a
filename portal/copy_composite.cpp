#include "portal/copy_composite.h"

#include "portal/last_slot_mask.h"
#include "portal/row_sides.h"

#include <algorithm>

namespace zvk::Pelkraft {

CopyComposite::CopyComposite(const ConversionJob& newJob)
    : job(newJob), loadFacility(ChunkLoadFacilityInternal::Create(job.source, job.sseVersion)),
      saveFacility(ChunkSaveFacilityInternal::Create(job.destination, job.sseVersion)),
      loadMethod(loadFacility.descriptor->GetLoadMethod(loadFacility)),
      saveMethod(saveFacility.descriptor->GetLoadMethod(saveFacility)),
      wholeChunks(std::min(CountWholeChunks(job.source), CountWholeChunks(job.destination))),
      rest(CountRest()),
      buffer(ChainMetrics::SingleChunk(PixelBytes(job.source)),
             RowSide(loadFacility, loadFacility.descriptor->GetPartialChunkSize(loadFacility)),
             RowSide(saveFacility, saveFacility.descriptor->GetPartialChunkSize(saveFacility))),
      source{job.sourceData,
             static_cast<std::int64_t>(loadFacility.descriptor->GetFirstChunkOffset(loadFacility))},
      destination(job.destinationData)
{
    if (rest != 0)
        trailingBuffer.emplace(ChainMetrics::SingleChunk(PixelBytes(job.source)),
                               StripSide(loadFacility, 0), StripSide(saveFacility, 0));
}

void CopyComposite::Run()
{
    MoveWholeChunks();
    if (rest != 0)
        MoveRest();
}

std::uint64_t CopyComposite::CountRest() const
{
    return std::min(CountColumns(job.source, job.source.activeWidth),
                    CountColumns(job.destination, job.destination.activeWidth)) -
           wholeChunks * slotsPerChunk;
}

void CopyComposite::MoveWholeChunks()
{
    ChunkHeader* chunk = buffer.GetChunk(0);
    const std::int64_t loadStep = loadFacility.descriptor->GetChunkStep(loadFacility);
    const std::int64_t saveStep = saveFacility.descriptor->GetChunkStep(saveFacility);
    for (std::uint64_t i = 0; i != wholeChunks; ++i) {
        loadMethod(source.row + source.offset, chunk);
        saveMethod(chunk, destination);
        source.offset += loadStep;
        destination += saveStep;
    }
}

void CopyComposite::MoveRest()
{
    ChunkHeader* chunk = trailingBuffer->GetChunk(0);
    loadFacility.descriptor->LoadPartialChunk(loadFacility, source, buffer.GetLoadStrip(), rest);
    loadMethod(buffer.GetLoadStrip(), chunk);
    MaskLastSlot(chunk, rest - 1, job.destination,
                 std::min(job.source.width, job.destination.width));
    saveMethod(chunk, buffer.GetSaveStrip());
    saveFacility.descriptor->SavePartialChunk(saveFacility, buffer.GetSaveStrip(), destination,
                                              rest);
}

} // namespace zvk::Pelkraft
