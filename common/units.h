#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

constexpr std::int64_t unitBytes = 16;
constexpr std::int64_t slotsPerChunk = 16;
constexpr std::int64_t headerBytes = 64;

// Functions, and not inline ones, so that vector files can call them without bringing along
// a copy of their own.

// Bytes of a sample: depths of no whole bytes are rounded up.
std::int64_t BytesPerSample(std::int32_t bits);
std::uint64_t RoundUpToUnit(std::uint64_t bytes);
std::uint64_t CountUnits(std::uint64_t pixelBytes);
// Bytes of the 16 slots of a chunk whose pixels have this size.
std::uint64_t SlotAreaBytes(std::uint64_t pixelBytes);
// Bytes from one chunk's header to the next in a region.
std::uint64_t ChunkStride(std::uint64_t pixelBytes);

} // namespace zvk::Pelkraft
