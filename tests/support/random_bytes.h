#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// The same bytes for the same size and seed, everywhere.
std::vector<unsigned char> RandomBytes(std::size_t size, std::uint32_t seed);

} // namespace zvk::Pelkraft::TestSupport
