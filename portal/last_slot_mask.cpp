#include "portal/last_slot_mask.h"

#include "portal/operation_buffers.h"

namespace zvk::Pelkraft {

void MaskLastSlot(ChunkHeader* chunk, std::uint64_t slot, const ImageRowFormat& destination,
                  std::int64_t pixels)
{
    const auto usedBits = static_cast<unsigned>(pixels * destination.bits & 7);
    if (!IsPacked(destination) || usedBits == 0)
        return;
    const auto mask = static_cast<unsigned char>(0xFF00U >> usedBits & 0xFFU);
    unsigned char* bytes = GetSlots(chunk) + slot * RoundUpToUnit(chunk->pixelBytes);
    for (std::uint64_t i = 0; i != chunk->pixelBytes; ++i)
        bytes[i] &= mask;
}

} // namespace zvk::Pelkraft
