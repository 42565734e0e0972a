#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// Takes tones, two views and a place of the page from any bytes. The tones must be accepted or
// refused by their own numbers, and rows be refused or dithered as the naive reference does it.
// Gives what is wrong, or nothing.
std::string CheckAnyDither(const std::uint8_t* bytes, std::size_t count);

} // namespace zvk::Pelkraft::TestSupport
