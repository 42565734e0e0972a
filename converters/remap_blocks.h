#pragma once

#include "converters/convert_facility.h"

#include <cstdint>

namespace zvk::Pelkraft {

// The slots of a remap step, in units.
struct RemapUnits
{
    std::uint64_t input;
    std::uint64_t output;
};

RemapUnits CountRemapUnits(const ChunkConvertFacility& facility, const ImageRowFormat& input);

// Writes a 16-byte shuffle mask per pair of units, the masks of one output unit side by side. A
// byte of an output unit that does not come from this input unit is 0x80, which shuffles to 0.
void BuildRemapMasks(const ChunkConvertFacility& facility, const ImageRowFormat& input,
                     const RemapUnits& units, unsigned char* masks);

// The portable road's block has one entry for each output channel: a lane of the input slot, or
// emptyRemapEntry for zero. A lane at the channel count may lie after the slot, even after the last
// one of a chunk, where more of the same buffer follows.
using RemapEntry = std::int64_t;

constexpr RemapEntry emptyRemapEntry = -1;

void BuildRemapEntries(const ChunkConvertFacility& facility, const ImageRowFormat& input,
                       RemapEntry* entries);

} // namespace zvk::Pelkraft
