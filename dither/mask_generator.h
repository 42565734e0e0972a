#pragma once

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// Makes the ranks of the built-in mask, in some seconds: at any number of lowest ranks they stand
// as evenly and as irregularly as they can, by the method of void and cluster (R. Ulichney, 1993).
// All of it is integers, so that every machine makes the same mask.
std::vector<std::uint16_t> MakeMask();

} // namespace zvk::Pelkraft
