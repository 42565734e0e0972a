#include "chunks/row_walk.h"

#include "common/units.h"

#include <cstddef>
#include <cstring>

namespace zvk::Pelkraft {
namespace {

// An interleaved row is one plane of whole pixels.
struct Planes
{
    std::int64_t count;
    std::uint64_t columnBytes;
    // Bytes from plane to plane in the row and in a strip.
    std::int64_t pitch;
    std::int64_t stripPitch;
};

template <bool isPlanar, typename Facility>
Planes PlanesOf(const Facility& facility)
{
    const std::uint64_t columnBytes =
        isPlanar ? static_cast<std::uint64_t>(facility.bytesPerSample) : PixelBytesOf(facility);
    return {isPlanar ? facility.channels : 1, columnBytes,
            static_cast<std::int64_t>(facility.columns * columnBytes),
            static_cast<std::int64_t>(slotsPerChunk * columnBytes)};
}

template <typename Facility>
std::uint64_t StripBytes(const Facility& facility)
{
    return slotsPerChunk * PixelBytesOf(facility);
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

template <bool isPlanar>
std::int64_t RowLoader<isPlanar>::GetChunkStep(const Facility& facility) const
{
    const auto step = static_cast<std::uint64_t>(PlanesOf<isPlanar>(facility).stripPitch);
    return static_cast<std::int64_t>(facility.reversed ? 0 - step : step);
}

template <bool isPlanar>
void RowLoader<isPlanar>::LoadPartialChunk(const Facility& facility, const SourcePosition& position,
                                           void* strip, std::uint64_t count) const
{
    const Planes planes = PlanesOf<isPlanar>(facility);
    // The walk of a reversed row stops before the row's first byte, by just the bytes that the
    // strip leaves out before its pixels.
    const auto skip = static_cast<std::int64_t>(
        facility.reversed ? (slotsPerChunk - count) * planes.columnBytes : 0);
    auto* stripBytes = static_cast<unsigned char*>(strip);

    ClearStrip(strip, StripBytes(facility));
    for (std::int64_t plane = 0; plane < planes.count; ++plane)
        CopyBytes(stripBytes + (skip + plane * planes.stripPitch),
                  position.row + (position.offset + skip + plane * planes.pitch),
                  count * planes.columnBytes);
}

template <bool isPlanar>
std::uint64_t RowLoader<isPlanar>::GetPartialChunkSize(const Facility& facility) const
{
    return StripBytes(facility);
}

// A reversed walk begins with the last 16 columns, which a short row does not have.
template <bool isPlanar>
std::uint64_t RowLoader<isPlanar>::GetFirstChunkOffset(const Facility& facility) const
{
    const std::uint64_t columnBytes = PlanesOf<isPlanar>(facility).columnBytes;
    return facility.reversed ? (facility.columns - slotsPerChunk) * columnBytes : 0;
}

template <bool isPlanar>
std::int64_t RowSaver<isPlanar>::GetChunkStep(const Facility& facility) const
{
    return PlanesOf<isPlanar>(facility).stripPitch;
}

template <bool isPlanar>
void RowSaver<isPlanar>::SavePartialChunk(const Facility& facility, const void* strip, void* row,
                                          std::uint64_t count) const
{
    const Planes planes = PlanesOf<isPlanar>(facility);
    for (std::int64_t plane = 0; plane < planes.count; ++plane)
        CopyBytes(static_cast<unsigned char*>(row) + plane * planes.pitch,
                  static_cast<const unsigned char*>(strip) + plane * planes.stripPitch,
                  count * planes.columnBytes);
}

template <bool isPlanar>
std::uint64_t RowSaver<isPlanar>::GetPartialChunkSize(const Facility& facility) const
{
    return StripBytes(facility);
}

template class RowLoader<false>;
template class RowLoader<true>;
template class RowSaver<false>;
template class RowSaver<true>;

} // namespace zvk::Pelkraft
