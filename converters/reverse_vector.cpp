#include "common/slot_units_vector.h"
#include "common/units.h"
#include "common/unroll_vector.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"

#include <cstdint>

namespace zvk::Pelkraft::VectorRoad {
namespace {

// One unit of each slot, from the first slot's on.
void ReverseColumn(unsigned char* column, std::uint64_t slotBytes)
{
    Unroll<slotsPerChunk / 2>([=](auto slot) {
        unsigned char* front = column + static_cast<std::uint64_t>(slot) * slotBytes;
        unsigned char* back =
            column + static_cast<std::uint64_t>(slotsPerChunk - 1 - slot) * slotBytes;
        const __m128i unit = LoadSlotUnit(front);
        StoreSlotUnit(front, LoadSlotUnit(back));
        StoreSlotUnit(back, unit);
    });
}

void ReverseOneUnit(void* chunkHeader, const void*)
{
    ReverseColumn(SlotsOf(chunkHeader), unitBytes);
}

void ReverseUnits(void* chunkHeader, const void*)
{
    const std::uint64_t unitCount = CountUnits(PixelBytesOf(chunkHeader));
    for (std::uint64_t unit = 0; unit < unitCount; ++unit)
        ReverseColumn(SlotsOf(chunkHeader) + unit * unitBytes, unitCount * unitBytes);
}

} // namespace

ConvertMethod GetReverse(const ImageRowFormat& input)
{
    return CountUnits(PixelBytes(input)) == 1 ? ReverseOneUnit : ReverseUnits;
}

} // namespace zvk::Pelkraft::VectorRoad
