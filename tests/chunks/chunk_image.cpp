#include "tests/chunks/chunk_image.h"

#include "chunks/chunk_facility.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

template <typename Facility>
Facility MakeRecord(std::size_t channels, std::size_t sampleBytes)
{
    Facility facility{};
    facility.channels = static_cast<std::int64_t>(channels);
    facility.bytesPerSample = static_cast<std::int64_t>(sampleBytes);
    facility.columns = 16;
    return facility;
}

#ifdef PELKRAFT_VECTOR_ROAD
// From the class that takes the count of units at run time.
template <typename Facility>
auto AnySizeMethod(const Facility& record, std::int32_t layout)
{
    Facility large = record;
    large.channels = 200;
    return Facility::SelectDescriptor(large, layout)->GetLoadMethod(record);
}
#endif

HeaderFields PixelSize(std::size_t pixelBytes)
{
    HeaderFields header;
    header.pixelBytes = pixelBytes;
    return header;
}

HeaderFields LoadUnits(std::size_t pixelBytes)
{
    HeaderFields header;
    header.loadUnitCount = SlotBytes(pixelBytes) / 16;
    return header;
}

HeaderFields SaveUnits(std::size_t pixelBytes)
{
    HeaderFields header;
    header.saveUnitCount = SlotBytes(pixelBytes) / 16;
    return header;
}

} // namespace

std::vector<LoadWay> InterleavedLoadWays(std::size_t pixelBytes)
{
    const auto record = MakeRecord<ChunkLoadFacilityInternal>(pixelBytes, 1);
    const auto* portable =
        ChunkLoadFacilityInternal::SelectDescriptorX86(record, LayoutInterleaved);
    std::vector<LoadWay> ways = {
        {"portable", portable->GetLoadMethod(record), PixelSize(pixelBytes), true}};
#ifdef PELKRAFT_VECTOR_ROAD
    const auto* selected = ChunkLoadFacilityInternal::SelectDescriptor(record, LayoutInterleaved);
    const HeaderFields header = pixelBytes > 80 ? LoadUnits(pixelBytes) : HeaderFields{};
    ways.push_back({"vector", selected->GetLoadMethod(record), header, false});
    ways.push_back(
        {"any size", AnySizeMethod(record, LayoutInterleaved), LoadUnits(pixelBytes), false});
#endif
    return ways;
}

std::vector<SaveWay> InterleavedSaveWays(std::size_t pixelBytes)
{
    const auto record = MakeRecord<ChunkSaveFacilityInternal>(pixelBytes, 1);
    const auto* portable =
        ChunkSaveFacilityInternal::SelectDescriptorX86(record, LayoutInterleaved);
    std::vector<SaveWay> ways = {
        {"portable", portable->GetLoadMethod(record), PixelSize(pixelBytes)}};
#ifdef PELKRAFT_VECTOR_ROAD
    const auto* selected = ChunkSaveFacilityInternal::SelectDescriptor(record, LayoutInterleaved);
    const HeaderFields header = pixelBytes > 80 ? SaveUnits(pixelBytes) : HeaderFields{};
    ways.push_back({"vector", selected->GetLoadMethod(record), header});
    ways.push_back({"any size", AnySizeMethod(record, LayoutInterleaved), SaveUnits(pixelBytes)});
#endif
    return ways;
}

std::vector<LoadWay> PlanarLoadWays(const PlanarRow& row)
{
    const auto record = MakeRecord<ChunkLoadFacilityInternal>(row.planes, row.sampleBytes);
    const std::size_t pixelBytes = row.planes * row.sampleBytes;
    const auto* portable = ChunkLoadFacilityInternal::SelectDescriptorX86(record, LayoutPlanar);
    std::vector<LoadWay> ways = {
        {"portable", portable->GetLoadMethod(record), PixelSize(pixelBytes), true}};
#ifdef PELKRAFT_VECTOR_ROAD
    const auto* selected = ChunkLoadFacilityInternal::SelectDescriptor(record, LayoutPlanar);
    const HeaderFields header = pixelBytes > 16 ? LoadUnits(pixelBytes) : HeaderFields{};
    ways.push_back({"vector", selected->GetLoadMethod(record), header, false});
    ways.push_back({"any size", AnySizeMethod(record, LayoutPlanar), LoadUnits(pixelBytes), false});
#endif
    for (LoadWay& way : ways)
        way.header.loadPlanePitch = row.pitch;
    return ways;
}

std::vector<SaveWay> PlanarSaveWays(const PlanarRow& row)
{
    const auto record = MakeRecord<ChunkSaveFacilityInternal>(row.planes, row.sampleBytes);
    const std::size_t pixelBytes = row.planes * row.sampleBytes;
    const auto* portable = ChunkSaveFacilityInternal::SelectDescriptorX86(record, LayoutPlanar);
    std::vector<SaveWay> ways = {
        {"portable", portable->GetLoadMethod(record), PixelSize(pixelBytes)}};
#ifdef PELKRAFT_VECTOR_ROAD
    const auto* selected = ChunkSaveFacilityInternal::SelectDescriptor(record, LayoutPlanar);
    const HeaderFields header = pixelBytes > 16 ? SaveUnits(pixelBytes) : HeaderFields{};
    ways.push_back({"vector", selected->GetLoadMethod(record), header});
    ways.push_back({"any size", AnySizeMethod(record, LayoutPlanar), SaveUnits(pixelBytes)});
#endif
    for (SaveWay& way : ways)
        way.header.savePlanePitch = row.pitch;
    return ways;
}

std::size_t SlotBytes(std::size_t pixelBytes)
{
    return (pixelBytes + 15) / 16 * 16;
}

GuardedBuffer MakeChunk(std::size_t pixelBytes, const HeaderFields& header, unsigned char fill,
                        Flush flush)
{
    GuardedBuffer chunk(firstSlot + 16 * SlotBytes(pixelBytes), flush, fill);
    std::memset(chunk.data(), 0x7A, firstSlot);
    std::memcpy(chunk.data(), &header, sizeof(header));
    return chunk;
}

GuardedBuffer MakeFilledChunk(const Bytes& pixels, std::size_t pixelBytes,
                              const HeaderFields& header, unsigned char pad, Flush flush)
{
    GuardedBuffer chunk = MakeChunk(pixelBytes, header, pad, flush);
    for (std::size_t pixel = 0; pixel < 16; ++pixel) {
        for (std::size_t byte = 0; byte < pixelBytes; ++byte) {
            chunk.data()[firstSlot + pixel * SlotBytes(pixelBytes) + byte] =
                pixels[pixel * pixelBytes + byte];
        }
    }
    return chunk;
}

Bytes PixelsOf(const GuardedBuffer& chunk, std::size_t pixelBytes)
{
    Bytes pixels;
    for (std::size_t pixel = 0; pixel < 16; ++pixel) {
        const unsigned char* slot = chunk.data() + firstSlot + pixel * SlotBytes(pixelBytes);
        pixels.insert(pixels.end(), slot, slot + pixelBytes);
    }
    return pixels;
}

Bytes PadsOf(const GuardedBuffer& chunk, std::size_t pixelBytes)
{
    Bytes pads;
    for (std::size_t pixel = 0; pixel < 16; ++pixel) {
        const unsigned char* slot = chunk.data() + firstSlot + pixel * SlotBytes(pixelBytes);
        pads.insert(pads.end(), slot + pixelBytes, slot + SlotBytes(pixelBytes));
    }
    return pads;
}

Bytes HeaderOf(const GuardedBuffer& chunk)
{
    return Bytes(chunk.data(), chunk.data() + firstSlot);
}

} // namespace zvk::Pelkraft::TestSupport
