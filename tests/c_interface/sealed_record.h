#pragma once

#include "tests/support/naive_conversion.h"

#include <cstdint>

// Saved records, byte by byte from their definition.
namespace zvk::Pelkraft::TestSupport {

// The number with its low byte first.
void AppendNumber(Bytes& bytes, std::uint64_t number, int count);

// The bytes and the check of all of them, whatever they say.
Bytes Sealed(Bytes record);

// Any content in a frame that fits.
Bytes SealedRecord(const Bytes& letters, std::uint32_t version, const Bytes& content);

} // namespace zvk::Pelkraft::TestSupport
