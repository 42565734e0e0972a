#include "tests/chunks/chunk_image.h"

#include "chunks/chunk_facility.h"
#include "common/road.h"

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

template <typename Facility>
std::vector<Way> WaysFor(const ChunkRow& row, std::uint64_t HeaderFields::*unitCount,
                         std::uint64_t HeaderFields::*pitch)
{
    const bool isPlanar = row.layout != LayoutInterleaved;
    Facility record{};
    record.channels = static_cast<std::int64_t>(isPlanar ? row.planes : row.sampleBytes);
    record.bytesPerSample = static_cast<std::int64_t>(isPlanar ? row.sampleBytes : 1);
    record.columns = 16;
    HeaderFields none;
    if (isPlanar)
        none.*pitch = row.pitch;
    HeaderFields size = none;
    size.pixelBytes = row.PixelBytes();
    HeaderFields units = none;
    units.*unitCount = SlotBytes(row.PixelBytes()) / 16;

    const auto* portable = Facility::SelectDescriptorX86(record, row.layout);
    std::vector<Way> ways = {{"portable", portable->GetLoadMethod(record), size, true}};
    if (hasVectorRoad) {
        const auto* selected = Facility::SelectDescriptor(record, row.layout);
        const bool isFixed = row.PixelBytes() <= (isPlanar ? 16 : 80);
        ways.push_back({"vector", selected->GetLoadMethod(record), isFixed ? none : units, false});
        Facility large = record;
        large.channels = 200;
        const auto* anySize = Facility::SelectDescriptor(large, row.layout);
        ways.push_back({"any size", anySize->GetLoadMethod(record), units, false});
    }
    return ways;
}

} // namespace

ChunkRow InterleavedRow(std::size_t pixelBytes)
{
    return {LayoutInterleaved, 1, pixelBytes, 0};
}

ChunkRow PlanarRow(std::size_t planes, std::size_t sampleBytes, std::size_t gap)
{
    return {LayoutPlanar, planes, sampleBytes, 16 * sampleBytes + gap};
}

std::vector<Way> WaysOf(End end, const ChunkRow& row)
{
    if (end == End::Load)
        return WaysFor<ChunkLoadFacilityInternal>(row, &HeaderFields::loadUnitCount,
                                                  &HeaderFields::loadPlanePitch);
    return WaysFor<ChunkSaveFacilityInternal>(row, &HeaderFields::saveUnitCount,
                                              &HeaderFields::savePlanePitch);
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
