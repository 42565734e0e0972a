#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"
#include "converters/remap_blocks.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

template <typename Sample>
void RemapChunk(void* chunkHeader, const void* parameters)
{
    const auto* entries = static_cast<const RemapEntry*>(parameters);
    void* nextHeader = NextRegionOf(chunkHeader);
    const std::uint64_t fromSlotBytes = RoundUpToUnit(PixelBytesOf(chunkHeader));
    const std::uint64_t toSlotBytes = RoundUpToUnit(PixelBytesOf(nextHeader));
    const std::uint64_t sampleCount = PixelBytesOf(nextHeader) / sizeof(Sample);
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(nextHeader);

    for (std::uint64_t sample = 0; sample < sampleCount; ++sample) {
        const RemapEntry entry = entries[sample];
        unsigned char* lane = to + sample * sizeof(Sample);
        for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot)
            StoreWord(lane + slot * toSlotBytes,
                      entry == emptyRemapEntry
                          ? Sample{0}
                          : LoadWord<Sample>(from + slot * fromSlotBytes +
                                             static_cast<std::uint64_t>(entry) * sizeof(Sample)));
    }
}

} // namespace

ConvertMethod GetRemap(std::size_t sampleBytes)
{
    return sampleBytes == 1 ? RemapChunk<unsigned char> : RemapChunk<unsigned short>;
}

} // namespace zvk::Pelkraft::PortableRoad
