#pragma once

#include "common/conversion.h"
#include "converters/convert_facility.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// Moves the row through load, the chain's steps and save, 16 pixels at a time. Everything that
// can fail, memory included, fails before the first pixel is written. It throws std::bad_alloc and
//   "zvk::Pelkraft::ConversionPortal unsupported conversion count"
//   "zvk::Pelkraft::ConversionPortal memory allocation failed for relocation buffer"
// and what the selections and the chain's metrics throw.
void ConversionPortal(const ConversionJob& job, std::size_t chainLength,
                      const ChunkConvertFacility* chain);

} // namespace zvk::Pelkraft
