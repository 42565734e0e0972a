#pragma once

#include <cstddef>
#include <vector>

namespace zvk::Pelkraft::Client {

// The power of a square field of numbers by frequency, from its rows one after the other: entry k
// is the mean of all waves whose frequency is nearest to k per side, up to half the side. White
// noise has 1 everywhere, an even field 0. The side is a power of 2.
std::vector<double> RadialSpectrum(std::vector<double> field, std::size_t side);

} // namespace zvk::Pelkraft::Client
