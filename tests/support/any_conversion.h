#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// Takes a pair of rows, an operation and a map from any bytes, and converts on both roads. What is
// served must give the bytes of the naive reference; what is not must be refused with a text and
// touch nothing. Gives what is wrong, or nothing.
std::string CheckAnyConversion(const std::uint8_t* bytes, std::size_t count);

} // namespace zvk::Pelkraft::TestSupport
