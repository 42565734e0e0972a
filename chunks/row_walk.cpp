#include "chunks/row_walk.h"

#include "chunks/chunk_facility.h"
#include "common/units.h"

#include <cstddef>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

// Unsigned, so that a record from outside the checked ranges wraps instead of overflowing.
template <typename Facility>
std::uint64_t PixelBytesOf(const Facility& facility)
{
    return static_cast<std::uint64_t>(facility.channels) *
           static_cast<std::uint64_t>(facility.bytesPerSample);
}

template <typename Facility>
std::uint64_t StripBytes(const Facility& facility)
{
    return slotsPerChunk * PixelBytesOf(facility);
}

// Of 16 samples, which is also the step along each plane of a row.
template <typename Facility>
std::uint64_t PlaneStripBytes(const Facility& facility)
{
    return slotsPerChunk * static_cast<std::uint64_t>(facility.bytesPerSample);
}

template <typename Facility>
std::uint64_t PlanePitch(const Facility& facility)
{
    return facility.columns * static_cast<std::uint64_t>(facility.bytesPerSample);
}

std::int64_t SignedStep(const ChunkLoadFacilityInternal& facility, std::uint64_t bytes)
{
    return static_cast<std::int64_t>(facility.reversed ? 0 - bytes : bytes);
}

// A reversed walk begins with the last 16 columns, which a short row does not have.
std::uint64_t FirstOffset(const ChunkLoadFacilityInternal& facility, std::uint64_t columnBytes)
{
    return facility.reversed ? (facility.columns - slotsPerChunk) * columnBytes : 0;
}

// What a partial chunk leaves out in front of its pixels: the walk of a reversed row stops before
// the row's first byte, by just these bytes.
std::uint64_t SkippedBytes(const ChunkLoadFacilityInternal& facility, std::uint64_t count,
                           std::uint64_t columnBytes)
{
    return facility.reversed ? (slotsPerChunk - count) * columnBytes : 0;
}

// A row without channels may have no memory at all, which memcpy must not see.
void CopyBytes(void* to, const void* from, std::uint64_t bytes)
{
    if (bytes != 0)
        std::memcpy(to, from, static_cast<std::size_t>(bytes));
}

void ClearStrip(void* strip, std::uint64_t bytes)
{
    if (bytes != 0)
        std::memset(strip, 0, static_cast<std::size_t>(bytes));
}

} // namespace

std::int64_t InterleavedLoader::GetChunkStep(const ChunkLoadFacilityInternal& facility) const
{
    return SignedStep(facility, StripBytes(facility));
}

void InterleavedLoader::LoadPartialChunk(const ChunkLoadFacilityInternal& facility,
                                         const SourcePosition& position, void* strip,
                                         std::uint64_t count) const
{
    const std::uint64_t pixelBytes = PixelBytesOf(facility);
    const std::uint64_t skip = SkippedBytes(facility, count, pixelBytes);
    const std::int64_t start = position.offset + static_cast<std::int64_t>(skip);

    ClearStrip(strip, StripBytes(facility));
    CopyBytes(static_cast<unsigned char*>(strip) + skip, position.row + start, count * pixelBytes);
}

std::uint64_t
InterleavedLoader::GetPartialChunkSize(const ChunkLoadFacilityInternal& facility) const
{
    return StripBytes(facility);
}

std::uint64_t
InterleavedLoader::GetFirstChunkOffset(const ChunkLoadFacilityInternal& facility) const
{
    return FirstOffset(facility, PixelBytesOf(facility));
}

std::int64_t PlanarLoader::GetChunkStep(const ChunkLoadFacilityInternal& facility) const
{
    return SignedStep(facility, PlaneStripBytes(facility));
}

void PlanarLoader::LoadPartialChunk(const ChunkLoadFacilityInternal& facility,
                                    const SourcePosition& position, void* strip,
                                    std::uint64_t count) const
{
    const auto sampleBytes = static_cast<std::uint64_t>(facility.bytesPerSample);
    const std::uint64_t skip = SkippedBytes(facility, count, sampleBytes);
    const auto pitch = static_cast<std::int64_t>(PlanePitch(facility));
    const auto planeStripBytes = static_cast<std::int64_t>(PlaneStripBytes(facility));
    const std::int64_t start = position.offset + static_cast<std::int64_t>(skip);
    auto* stripBytes = static_cast<unsigned char*>(strip);

    ClearStrip(strip, StripBytes(facility));
    for (std::int64_t plane = 0; plane < facility.channels; ++plane) {
        unsigned char* planeStrip = stripBytes + skip + plane * planeStripBytes;
        CopyBytes(planeStrip, position.row + (start + plane * pitch), count * sampleBytes);
    }
}

std::uint64_t PlanarLoader::GetPartialChunkSize(const ChunkLoadFacilityInternal& facility) const
{
    return StripBytes(facility);
}

std::uint64_t PlanarLoader::GetFirstChunkOffset(const ChunkLoadFacilityInternal& facility) const
{
    return FirstOffset(facility, static_cast<std::uint64_t>(facility.bytesPerSample));
}

std::int64_t InterleavedSaver::GetChunkStep(const ChunkSaveFacilityInternal& facility) const
{
    return static_cast<std::int64_t>(StripBytes(facility));
}

void InterleavedSaver::SavePartialChunk(const ChunkSaveFacilityInternal& facility,
                                        const void* strip, void* row, std::uint64_t count) const
{
    CopyBytes(row, strip, count * PixelBytesOf(facility));
}

std::uint64_t InterleavedSaver::GetPartialChunkSize(const ChunkSaveFacilityInternal& facility) const
{
    return StripBytes(facility);
}

std::int64_t PlanarSaver::GetChunkStep(const ChunkSaveFacilityInternal& facility) const
{
    return static_cast<std::int64_t>(PlaneStripBytes(facility));
}

void PlanarSaver::SavePartialChunk(const ChunkSaveFacilityInternal& facility, const void* strip,
                                   void* row, std::uint64_t count) const
{
    const std::uint64_t bytes = count * static_cast<std::uint64_t>(facility.bytesPerSample);
    const auto planes = static_cast<std::uint64_t>(facility.channels);
    const auto* planeStrip = static_cast<const unsigned char*>(strip);
    auto* planeRow = static_cast<unsigned char*>(row);

    for (std::uint64_t plane = 0; plane < planes; ++plane) {
        CopyBytes(planeRow + plane * PlanePitch(facility),
                  planeStrip + plane * PlaneStripBytes(facility), bytes);
    }
}

std::uint64_t PlanarSaver::GetPartialChunkSize(const ChunkSaveFacilityInternal& facility) const
{
    return StripBytes(facility);
}

} // namespace zvk::Pelkraft
