#pragma once

#include "direct/kernels.h"

#include <cstddef>

namespace zvk::Pelkraft::PortableRoad {

// The map of a step alone: each source pixel once, in their order.
void MapPixels(const PixelStep& step, const unsigned char* source, unsigned char* destination,
               std::size_t pixels);

} // namespace zvk::Pelkraft::PortableRoad
