#pragma once

#include "dither/dither_rows.h"

namespace zvk::Pelkraft {

// Holds the level of each sample of each channel, and the mask. It takes the same memory for any
// number of steps.
std::unique_ptr<const DitherRows> MakeLevelDither(const DitherRequest& request);

} // namespace zvk::Pelkraft
