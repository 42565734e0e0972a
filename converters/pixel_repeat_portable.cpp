#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

// Descending, so that the copies land on slots that have been read.
template <int factor>
void RepeatColumn(unsigned char* column, const SpreadBlock& block)
{
    const std::uint64_t slotBytes = block.slotSize * unitBytes;
    for (std::uint64_t copy = factor * slotsPerChunk; copy-- != 0;) {
        const std::uint64_t chunk = copy / slotsPerChunk;
        const std::uint64_t slot = copy % slotsPerChunk;
        StoreWord(column + chunk * block.stride + slot * slotBytes,
                  LoadWord<std::uint32_t>(column + copy / factor * slotBytes));
    }
}

template <int factor>
void RepeatPixels(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const SpreadBlock*>(parameters);
    constexpr std::uint64_t wordBytes = sizeof(std::uint32_t);
    for (std::uint64_t word = block.slotSize * (unitBytes / wordBytes); word-- != 0;)
        RepeatColumn<factor>(SlotsOf(firstChunkHeader) + word * wordBytes, block);
}

} // namespace

ConvertMethod GetRepeat(const ImageRowFormat&, int factor)
{
    return factor == 2 ? RepeatPixels<2> : RepeatPixels<4>;
}

} // namespace zvk::Pelkraft::PortableRoad
