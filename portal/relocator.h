#pragma once

#include "common/chunk_header.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// A packed row, to be turned round sample by sample inside each byte.
struct PackedRow
{
    const unsigned char* source;
    std::int64_t bytes;
    // Bits in use of the last byte of each plane; 0 if all are.
    std::uint64_t lastByteBits;
    std::int32_t bits;
};

// Shifts the bit stream so that each plane ends at a byte's last bit, and turns the samples of
// each byte round. The bytes keep their order. Neither row is touched beyond `bytes`.
// Throws "zvk::Pelkraft::ConversionPortal::Relocator unsupported bit depth for relocation" for
// a depth other than 1 and 2.
void Relocator(unsigned char* target, const PackedRow& row);

// Stages 16 pixels of a reversed row at the end of the chunk's own slots, from where a load
// method expands them in place. An aligned row is its own answer.
const unsigned char* RelocateChunk(const unsigned char* row, ChunkHeader* chunk);

} // namespace zvk::Pelkraft
