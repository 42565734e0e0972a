#include "common/size_policies.h"
#include "common/units.h"
#include "common/unroll_vector.h"
#include "converters/chunk_slots.h"
#include "converters/chunk_units_vector.h"
#include "converters/convert_classes.h"
#include "converters/pixel_repeat_base.h"

#include <cstdint>

namespace zvk::Pelkraft::VectorRoad {
namespace {

void LeaveChunk(void*, const void*) {}

// One unit of each slot. Descending, so that the copies land on slots that have been read. Inlined
// by force, so that a known slot size is a constant in every address.
template <int factor>
[[gnu::always_inline]] inline void RepeatColumn(unsigned char* column, std::uint64_t slotBytes,
                                                std::uint64_t stride)
{
    Unroll<slotsPerChunk>([=](auto step) {
        constexpr int slot = slotsPerChunk - 1 - step;
        const __m128i unit = LoadUnit(column + slot * slotBytes);
        Unroll<factor>([=](auto copy) {
            constexpr int target = slot * factor + factor - 1 - copy;
            StoreUnit(column + target / slotsPerChunk * stride + target % slotsPerChunk * slotBytes,
                      unit);
        });
    });
}

// What the policy decides: a known slot size, or one from the block.
template <int factor>
void RepeatPixels(FixedSize<1>, unsigned char* slots, const PixelRepeatBlock& block)
{
    RepeatColumn<factor>(slots, unitBytes, block.stride);
}

template <int factor>
void RepeatPixels(VariableSize, unsigned char* slots, const PixelRepeatBlock& block)
{
    for (std::uint64_t unit = block.unitCount; unit-- != 0;)
        RepeatColumn<factor>(slots + unit * unitBytes, block.unitCount * unitBytes, block.stride);
}

template <int factor, typename Policy>
void RepeatChunk(void* firstChunkHeader, const void* parameters)
{
    RepeatPixels<factor>(Policy{}, SlotsOf(firstChunkHeader),
                         *static_cast<const PixelRepeatBlock*>(parameters));
}

template <int factor, typename Policy>
class ConvertPixelRepeat final : public ConvertPixelRepeatBase<factor>
{
public:
    ConvertMethod GetConvertMethod(const ChunkConvertFacility&, const ImageRowFormat& input,
                                   const ChunkStepGeometry& geometry,
                                   void* parameters) const override
    {
        if constexpr (factor == 1)
            return LeaveChunk;
        *static_cast<PixelRepeatBlock*>(parameters) = MakePixelRepeatBlock(input, geometry);
        return RepeatChunk<factor, Policy>;
    }
};

constexpr ConvertPixelRepeat<1, VariableSize> repeat1;
constexpr ConvertPixelRepeat<2, FixedSize<1>> repeat2OneUnit;
constexpr ConvertPixelRepeat<2, VariableSize> repeat2;
constexpr ConvertPixelRepeat<4, FixedSize<1>> repeat4OneUnit;
constexpr ConvertPixelRepeat<4, VariableSize> repeat4;

} // namespace

const IChunkConvertDescriptor* GetPixelRepeat(std::int32_t factor, std::uint64_t unitCount)
{
    if (factor == 1)
        return &repeat1;
    if (factor == 2)
        return unitCount == 1 ? static_cast<const IChunkConvertDescriptor*>(&repeat2OneUnit)
                              : &repeat2;
    return unitCount == 1 ? static_cast<const IChunkConvertDescriptor*>(&repeat4OneUnit) : &repeat4;
}

} // namespace zvk::Pelkraft::VectorRoad
