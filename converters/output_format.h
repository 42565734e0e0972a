#pragma once

#include "common/image_row_format.h"

#include <cstdint>

// The two answers that steps give about their output. Both leave the widths to the caller.
namespace zvk::Pelkraft {

ImageRowFormat& SetInterleavedFormat(ImageRowFormat& out, std::int32_t bits, std::int32_t channels);
ImageRowFormat& KeepFormat(ImageRowFormat& out, const ImageRowFormat& input);

} // namespace zvk::Pelkraft
