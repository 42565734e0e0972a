#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

std::uint16_t Widen(unsigned char sample)
{
    return static_cast<std::uint16_t>(sample * 257U);
}

// 127, not 128, after a product that is cut off: an input of 129 must still give 0.
unsigned char Narrow(std::uint16_t sample)
{
    const std::uint32_t high = sample * 0xFF01U >> 16;
    return static_cast<unsigned char>((high + 127) >> 8);
}

void WidenChunk(void* chunkHeader, const void*)
{
    const std::uint64_t sampleCount = PixelBytesOf(chunkHeader);
    const std::uint64_t fromSlotBytes = RoundUpToUnit(sampleCount);
    const std::uint64_t toSlotBytes = RoundUpToUnit(2 * sampleCount);
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));

    for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot)
        for (std::uint64_t sample = 0; sample < sampleCount; ++sample)
            StoreWord(to + slot * toSlotBytes + 2 * sample,
                      Widen(from[slot * fromSlotBytes + sample]));
}

void NarrowChunk(void* chunkHeader, const void*)
{
    const std::uint64_t sampleCount = PixelBytesOf(chunkHeader) >> 1;
    const std::uint64_t fromSlotBytes = RoundUpToUnit(2 * sampleCount);
    const std::uint64_t toSlotBytes = RoundUpToUnit(sampleCount);
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));

    for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot)
        for (std::uint64_t sample = 0; sample < sampleCount; ++sample)
            to[slot * toSlotBytes + sample] =
                Narrow(LoadWord<std::uint16_t>(from + slot * fromSlotBytes + 2 * sample));
}

} // namespace

ConvertMethod GetWiden(const ImageRowFormat&)
{
    return WidenChunk;
}

ConvertMethod GetNarrow(const ImageRowFormat&)
{
    return NarrowChunk;
}

} // namespace zvk::Pelkraft::PortableRoad
