#pragma once

#include "chunks/chunk_facility.h"
#include "portal/operation_buffers.h"

namespace zvk::Pelkraft {

// What the headers say while whole chunks move between rows.
template <typename Facility>
SideGeometry RowSide(const Facility& facility, std::uint64_t stripBytes)
{
    const auto sampleBytes = static_cast<std::uint64_t>(facility.bytesPerSample);
    return {CountUnits(static_cast<std::uint64_t>(facility.channels) * sampleBytes),
            facility.columns * sampleBytes, stripBytes};
}

// What they say while a strip of 16 pixels takes the row's place.
template <typename Facility>
SideGeometry StripSide(const Facility& facility, std::uint64_t stripBytes)
{
    const auto sampleBytes = static_cast<std::uint64_t>(facility.bytesPerSample);
    return {CountUnits(static_cast<std::uint64_t>(facility.channels) * sampleBytes),
            slotsPerChunk * sampleBytes, stripBytes};
}

} // namespace zvk::Pelkraft
