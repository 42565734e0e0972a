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

// Writes a 16-byte shuffle mask per pair of units, the masks of one output unit side by side. A
// byte of an output unit that does not come from this input unit is 0x80, which shuffles to 0.
void BuildRemapMasks(const ChunkConvertFacility& facility, const ImageRowFormat& input,
                     const RemapUnits& units, unsigned char* masks);

} // namespace zvk::Pelkraft
