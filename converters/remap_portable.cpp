#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_classes.h"
#include "converters/convert_facility.h"
#include "converters/remap_base.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

// The block is one of these per output channel: a lane of the input slot, or -1 for zero. A lane
// at the channel count may lie behind the slot, even behind the last one of a chunk: what follows
// there belongs to the same buffer.
using Entry = std::int64_t;

constexpr Entry emptyEntry = -1;

Entry MakeEntry(std::int32_t source, std::int32_t inputChannels)
{
    const std::int32_t lane = source < inputChannels ? source : inputChannels;
    return lane < 0 ? emptyEntry : lane;
}

template <typename Sample>
void RemapChunk(void* chunkHeader, const void* parameters)
{
    const auto* entries = static_cast<const Entry*>(parameters);
    void* nextHeader = NextRegionOf(chunkHeader);
    const std::uint64_t fromSlotBytes = RoundUpToUnit(PixelBytesOf(chunkHeader));
    const std::uint64_t toSlotBytes = RoundUpToUnit(PixelBytesOf(nextHeader));
    const std::uint64_t sampleCount = PixelBytesOf(nextHeader) / sizeof(Sample);
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(nextHeader);

    for (std::uint64_t sample = 0; sample < sampleCount; ++sample) {
        const Entry entry = entries[sample];
        unsigned char* lane = to + sample * sizeof(Sample);
        for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot)
            StoreWord(lane + slot * toSlotBytes,
                      entry == emptyEntry
                          ? Sample{0}
                          : LoadWord<Sample>(from + slot * fromSlotBytes +
                                             static_cast<std::uint64_t>(entry) * sizeof(Sample)));
    }
}

template <typename Sample>
class ConvertRemapX86 final : public ConvertRemapBase
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat&) const override
    {
        return SetRemapMetrics(out, sizeof(Entry) * facility.remapChannels);
    }

    ConvertMethod GetConvertMethod(const ChunkConvertFacility& facility,
                                   const ImageRowFormat& input, const ChunkStepGeometry&,
                                   void* parameters) const override
    {
        auto* entries = static_cast<Entry*>(parameters);
        for (std::uint64_t channel = 0; channel < facility.remapChannels; ++channel)
            entries[channel] = MakeEntry(facility.remap[channel], input.channels);
        return RemapChunk<Sample>;
    }
};

constexpr ConvertRemapX86<unsigned char> remapBytes;
constexpr ConvertRemapX86<unsigned short> remapWords;

} // namespace

const IChunkConvertDescriptor* GetRemap(std::int64_t bytesPerSample)
{
    if (bytesPerSample == 1)
        return &remapBytes;
    return &remapWords;
}

} // namespace zvk::Pelkraft::PortableRoad
