#pragma once

#include "chunks/chunk_facility.h"
#include "portal/operation_buffers.h"

namespace zvk::Pelkraft {

// The headers say this of a row, or of a strip, that has so many columns.
template <typename Facility>
SideGeometry SideOf(const Facility& facility, std::uint64_t columns, std::uint64_t stripBytes)
{
    const auto channels = static_cast<std::uint64_t>(facility.channels);
    const auto sampleBytes = static_cast<std::uint64_t>(facility.bytesPerSample);
    return {CountUnits(channels * sampleBytes), columns * sampleBytes, stripBytes};
}

// Serves while whole chunks move between the rows.
template <typename Facility>
SideGeometry RowSide(const Facility& facility, std::uint64_t stripBytes)
{
    return SideOf(facility, facility.columns, stripBytes);
}

// Serves while a strip of 16 pixels takes the row's place.
template <typename Facility>
SideGeometry StripSide(const Facility& facility, std::uint64_t stripBytes)
{
    return SideOf(facility, slotsPerChunk, stripBytes);
}

} // namespace zvk::Pelkraft
