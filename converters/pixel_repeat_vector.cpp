#include "common/inlining.h"
#include "common/slot_units_vector.h"
#include "common/units.h"
#include "common/unroll_vector.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"

#include <cstdint>

namespace zvk::Pelkraft::VectorRoad {
namespace {

// One unit of each slot. Descending, so that the copies land on slots that have been read. Inlined
// by force, so that a known slot size is a constant in every address.
template <int factor>
PELKRAFT_ALWAYS_INLINE inline void RepeatColumn(unsigned char* column, std::uint64_t slotBytes,
                                                std::uint64_t stride)
{
    Unroll<slotsPerChunk>([=](auto step) {
        constexpr int slot = slotsPerChunk - 1 - step;
        const __m128i unit = LoadSlotUnit(column + slot * slotBytes);
        Unroll<factor>([=](auto copy) {
            constexpr int target = slot * factor + factor - 1 - copy;
            StoreSlotUnit(column + target / slotsPerChunk * stride +
                              target % slotsPerChunk * slotBytes,
                          unit);
        });
    });
}

template <int factor>
void RepeatOneUnit(void* firstChunkHeader, const void* parameters)
{
    RepeatColumn<factor>(SlotsOf(firstChunkHeader), unitBytes,
                         static_cast<const SpreadBlock*>(parameters)->stride);
}

template <int factor>
void RepeatUnits(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const SpreadBlock*>(parameters);
    for (std::uint64_t unit = block.slotSize; unit-- != 0;)
        RepeatColumn<factor>(SlotsOf(firstChunkHeader) + unit * unitBytes,
                             block.slotSize * unitBytes, block.stride);
}

} // namespace

ConvertMethod GetRepeat(const ImageRowFormat&, int factor, bool isOneUnit)
{
    if (factor == 2)
        return isOneUnit ? RepeatOneUnit<2> : RepeatUnits<2>;
    return isOneUnit ? RepeatOneUnit<4> : RepeatUnits<4>;
}

} // namespace zvk::Pelkraft::VectorRoad
