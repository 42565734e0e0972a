#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

void SwapWords(unsigned char* one, unsigned char* other)
{
    const auto word = LoadWord<std::uint32_t>(one);
    StoreWord(one, LoadWord<std::uint32_t>(other));
    StoreWord(other, word);
}

void ReverseChunk(void* chunkHeader, const void*)
{
    const std::uint64_t slotBytes = RoundUpToUnit(PixelBytesOf(chunkHeader));
    unsigned char* slots = SlotsOf(chunkHeader);
    for (std::uint64_t column = 0; column < slotBytes; column += sizeof(std::uint32_t))
        for (std::uint64_t slot = 0; slot < slotsPerChunk / 2; ++slot)
            SwapWords(slots + slot * slotBytes + column,
                      slots + (slotsPerChunk - 1 - slot) * slotBytes + column);
}

} // namespace

ConvertMethod GetReverse(const ImageRowFormat&)
{
    return ReverseChunk;
}

} // namespace zvk::Pelkraft::PortableRoad
