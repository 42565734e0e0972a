#pragma once

#include "dither/dither_rows.h"

namespace zvk::Pelkraft {

// The limits that all channels of a request take for the whole mask, in bytes, or the largest
// number where channels have too many steps to be compared with.
std::uint64_t LimitBytes(const DitherRequest& request);

// Holds, for each place of the mask, the samples at which one step ends and the next begins.
std::unique_ptr<const DitherRows> MakeLimitDither(const DitherRequest& request);

} // namespace zvk::Pelkraft
