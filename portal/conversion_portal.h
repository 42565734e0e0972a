#pragma once

#include "common/image_row_format.h"
#include "converters/convert_facility.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// One row to convert, with everything already checked.
struct ConversionJob
{
    std::int32_t sseVersion;
    const unsigned char* sourceData;
    unsigned char* destinationData;
    ImageRowFormat source;
    ImageRowFormat destination;
};

// Moves the row through load, the chain's steps and save, 16 pixels at a time. Everything that
// can fail, memory included, fails before the first pixel is written. Throws std::bad_alloc and
//   "zvk::Pelkraft::ConversionPortal unsupported conversion count"
//   "zvk::Pelkraft::ConversionPortal memory allocation failed for relocation buffer"
// and what the selections and the chain's metrics throw.
void ConversionPortal(const ConversionJob& job, std::size_t chainLength,
                      const ChunkConvertFacility* chain);

} // namespace zvk::Pelkraft
