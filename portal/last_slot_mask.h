#pragma once

#include "common/chunk_header.h"
#include "common/image_row_format.h"

#include <cstdint>

namespace zvk::Pelkraft {

// Clears the bits after the row's last pixel in a packed destination's last byte column. Does
// nothing for other rows, or where `pixels` of them end at a byte's end.
void MaskLastSlot(ChunkHeader* chunk, std::uint64_t slot, const ImageRowFormat& destination,
                  std::int64_t pixels);

} // namespace zvk::Pelkraft
