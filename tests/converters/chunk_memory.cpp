#include "tests/converters/chunk_memory.h"

#include "tests/support/random_bytes.h"

#include <cstring>
#include <numeric>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t slotBytesOf(std::size_t pixelBytes)
{
    return (pixelBytes + 15) / 16 * 16;
}

constexpr std::size_t strideOf(std::size_t pixelBytes)
{
    return 64 + 16 * slotBytesOf(pixelBytes);
}

std::size_t totalBytes(const std::vector<RegionPlan>& regions)
{
    return std::accumulate(regions.begin(), regions.end(), std::size_t{0},
                           [](std::size_t sum, const RegionPlan& region) {
                               return sum + region.chunkCount * strideOf(region.pixelBytes);
                           });
}

std::vector<std::size_t> startsOf(const std::vector<RegionPlan>& regions, RegionOrder order)
{
    std::vector<std::size_t> starts(regions.size());
    std::size_t start = 0;
    for (std::size_t turn = 0; turn < regions.size(); ++turn) {
        const std::size_t index = order == RegionOrder::Forward ? turn : regions.size() - 1 - turn;
        starts[index] = start;
        start += regions[index].chunkCount * strideOf(regions[index].pixelBytes);
    }
    return starts;
}

} // namespace

ChunkMemory::ChunkMemory(const std::vector<RegionPlan>& newRegions, std::uint32_t seed, Flush flush,
                         RegionOrder order)
    : regions(newRegions), regionStarts(startsOf(newRegions, order)),
      buffer(RandomBytes(totalBytes(newRegions), seed), flush)
{
    WriteHeaders();
}

unsigned char* ChunkMemory::Header(std::size_t region, std::size_t chunk) const
{
    return buffer.data() + regionStarts[region] + chunk * Stride(region);
}

std::size_t ChunkMemory::SlotStart(std::size_t region, std::size_t chunk, std::size_t slot) const
{
    return regionStarts[region] + chunk * Stride(region) + 64 + slot * SlotBytes(region);
}

std::size_t ChunkMemory::SlotBytes(std::size_t region) const
{
    return slotBytesOf(regions[region].pixelBytes);
}

std::size_t ChunkMemory::Stride(std::size_t region) const
{
    return strideOf(regions[region].pixelBytes);
}

void ChunkMemory::WriteHeaders() const
{
    for (std::size_t region = 0; region < regions.size(); ++region)
        for (std::size_t chunk = 0; chunk < regions[region].chunkCount; ++chunk) {
            const std::size_t header = regionStarts[region] + chunk * Stride(region);
            WriteField(header + 32, regions[region].pixelBytes);
            WriteField(header + 40, Stride(region));
            WriteField(header + 48, 0x7FFFFFFFFFFFFFFF);
            if (region + 1 < regions.size() && chunk % regions[region].outStep == 0) {
                const std::size_t target = chunk / regions[region].outStep *
                                           regions[region + 1].inStep * Stride(region + 1);
                WriteField(header + 48, regionStarts[region + 1] + target - header);
            }
        }
}

void ChunkMemory::WriteField(std::size_t position, std::uint64_t value) const
{
    std::memcpy(buffer.data() + position, &value, sizeof value);
}

} // namespace zvk::Pelkraft::TestSupport
