#include "portal/operation_buffers.h"

#include <cstring>
#include <new>

namespace zvk::Pelkraft {
namespace {

// Its text is the same on every platform.
class BadAllocation final : public std::bad_alloc
{
public:
    const char* what() const noexcept override { return "bad allocation"; }
};

std::uint64_t RegionBytes(const ChainRegion& region)
{
    return region.chunkCount * ChunkStride(region.pixelBytes);
}

std::uint64_t AllRegionBytes(const ChainMetrics& metrics)
{
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i != metrics.GetRegionCount(); ++i)
        bytes += RegionBytes(metrics.GetRegion(i));
    return bytes;
}

// The chunks of one region find their matching chunks in the next so far away.
struct RegionLink
{
    std::int64_t first;
    // Added for each further chunk that has a link.
    std::int64_t adjust;
};

RegionLink LinkRegions(const ChainRegion& region, const ChainRegion& next)
{
    const auto readHop = region.outStep * ChunkStride(region.pixelBytes);
    const auto writeHop = next.inStep * ChunkStride(next.pixelBytes);
    return {static_cast<std::int64_t>(RegionBytes(region)),
            static_cast<std::int64_t>(writeHop) - static_cast<std::int64_t>(readHop)};
}

// Every outStep-th chunk, from the first on, is one that the step after the region reads.
void WriteRegion(unsigned char* chunks, const ChainRegion& region, ChunkHeader header,
                 const RegionLink* link)
{
    header.pixelBytes = region.pixelBytes;
    header.chunkStride = ChunkStride(region.pixelBytes);
    std::int64_t nextLink = link != nullptr ? link->first : noNextRegion;
    for (std::uint64_t i = 0; i != region.chunkCount; ++i) {
        header.nextRegionOffset = noNextRegion;
        if (link != nullptr && i % region.outStep == 0) {
            header.nextRegionOffset = nextLink;
            nextLink += link->adjust;
        }
        std::memcpy(chunks + i * header.chunkStride, &header, sizeof header);
    }
}

} // namespace

OperationBufferContainer::OperationBufferContainer(const ChainMetrics& metrics,
                                                   const SideGeometry& load,
                                                   const SideGeometry& save)
    : table(metrics.GetStepCount() + 2, AllRegionBytes(metrics))
{
    SetEntries(metrics, load, save);
    size = table.GetEnd();
    data.reset(AllocateAligned(size, bufferAlignment));
    if (data == nullptr)
        throw BadAllocation();
    std::memset(data.get(), 0, static_cast<std::size_t>(size));

    ChunkHeader prototype{};
    prototype.loadUnitCount = load.unitCount;
    prototype.loadPlanePitch = load.planePitch;
    prototype.saveUnitCount = save.unitCount;
    prototype.savePlanePitch = save.planePitch;
    WriteRegions(metrics, prototype);
    table.Rewind();
    SetEntries(metrics, load, save);
}

ChunkHeader* OperationBufferContainer::GetChunk(std::size_t region) const
{
    return reinterpret_cast<ChunkHeader*>(data.get() + regionOffsets[region]);
}

void OperationBufferContainer::SetEntries(const ChainMetrics& metrics, const SideGeometry& load,
                                          const SideGeometry& save)
{
    table.SetEntry(data.get(), load.stripBytes);
    table.SetEntry(data.get(), save.stripBytes);
    for (std::size_t i = 0; i != metrics.GetStepCount(); ++i)
        table.SetEntry(data.get(), metrics.GetStep(i).ratio.parameterBytes);
}

void OperationBufferContainer::WriteRegions(const ChainMetrics& metrics,
                                            const ChunkHeader& prototype)
{
    std::uint64_t offset = 0;
    for (std::size_t i = 0; i != metrics.GetRegionCount(); ++i) {
        const ChainRegion& region = metrics.GetRegion(i);
        regionOffsets[i] = offset;
        unsigned char* chunks = data.get() + offset;
        if (i + 1 == metrics.GetRegionCount()) {
            WriteRegion(chunks, region, prototype, nullptr);
        } else {
            const RegionLink link = LinkRegions(region, metrics.GetRegion(i + 1));
            WriteRegion(chunks, region, prototype, &link);
        }
        offset += RegionBytes(region);
    }
}

} // namespace zvk::Pelkraft
