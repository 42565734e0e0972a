#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// Takes a pair of rows, an operation and a map from any bytes, and converts with vector code and
// with plain code. What is served must give the bytes of the chain and of the naive reference, and
// those of the chain where the rows overlap; what is not must be refused with a text and touch
// nothing. Gives what is wrong, or nothing.
std::string CheckAnyConversion(const std::uint8_t* bytes, std::size_t count);

// The same at every level that the processor has. No other thread may convert meanwhile.
std::string CheckAnyConversionAtAllLevels(const std::uint8_t* bytes, std::size_t count);

} // namespace zvk::Pelkraft::TestSupport
