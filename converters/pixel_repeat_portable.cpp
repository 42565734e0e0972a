#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_classes.h"
#include "converters/pixel_repeat_base.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

void LeaveChunk(void*, const void*) {}

// Descending, so that the copies land on slots that have been read.
template <int factor>
void RepeatColumn(unsigned char* column, const PixelRepeatBlock& block)
{
    const std::uint64_t slotBytes = block.unitCount * unitBytes;
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
    const auto& block = *static_cast<const PixelRepeatBlock*>(parameters);
    constexpr std::uint64_t wordBytes = sizeof(std::uint32_t);
    for (std::uint64_t word = block.unitCount * (unitBytes / wordBytes); word-- != 0;)
        RepeatColumn<factor>(SlotsOf(firstChunkHeader) + word * wordBytes, block);
}

template <int factor>
class ConvertPixelRepeatX86 final : public ConvertPixelRepeatBaseX86<factor>
{
public:
    ConvertMethod GetConvertMethod(const ChunkConvertFacility&, const ImageRowFormat& input,
                                   const ChunkStepGeometry& geometry,
                                   void* parameters) const override
    {
        if constexpr (factor == 1)
            return LeaveChunk;
        *static_cast<PixelRepeatBlock*>(parameters) = MakePixelRepeatBlock(input, geometry);
        return RepeatPixels<factor>;
    }
};

constexpr ConvertPixelRepeatX86<1> repeat1;
constexpr ConvertPixelRepeatX86<2> repeat2;
constexpr ConvertPixelRepeatX86<4> repeat4;

} // namespace

const IChunkConvertDescriptor* GetPixelRepeat(std::int32_t factor)
{
    if (factor == 1)
        return &repeat1;
    if (factor == 2)
        return &repeat2;
    return &repeat4;
}

} // namespace zvk::Pelkraft::PortableRoad
