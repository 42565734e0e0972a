#include "common/slot_units_vector.h"
#include "common/units.h"
#include "common/unroll_vector.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"

#include <cstdint>

namespace zvk::Pelkraft::VectorRoad {
namespace {

// The masks of slots of known size, held in registers over the whole chunk.
template <int units>
struct HeldMasks
{
    __m128i mask[units][units];
};

template <int units>
HeldMasks<units> HoldMasks(const unsigned char* masks)
{
    HeldMasks<units> held;
    Unroll<units>([&](auto output) {
        Unroll<units>([&](auto input) {
            held.mask[output][input] = LoadSlotUnit(masks + (output * units + input) * unitBytes);
        });
    });
    return held;
}

template <int units>
void RemapSlot(const unsigned char* from, unsigned char* to, const HeldMasks<units>& masks)
{
    Unroll<units>([&](auto output) {
        __m128i unit = _mm_setzero_si128();
        Unroll<units>([&](auto input) {
            unit = _mm_or_si128(unit, _mm_shuffle_epi8(LoadSlotUnit(from + input * unitBytes),
                                                       masks.mask[output][input]));
        });
        StoreSlotUnit(to + output * unitBytes, unit);
    });
}

template <int units>
void RemapFixedUnits(void* chunkHeader, const void* block)
{
    const HeldMasks<units> masks = HoldMasks<units>(static_cast<const unsigned char*>(block));
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    Unroll<slotsPerChunk>([&](auto slot) {
        constexpr std::int64_t start = slot * units * unitBytes;
        RemapSlot<units>(from + start, to + start, masks);
    });
}

__m128i PickLanes(const unsigned char* units, const unsigned char* masks, std::uint64_t index)
{
    return _mm_shuffle_epi8(LoadSlotUnit(units + index * unitBytes),
                            LoadSlotUnit(masks + index * unitBytes));
}

__m128i GatherUnit(const unsigned char* from, std::uint64_t inputUnits, const unsigned char* masks)
{
    __m128i unit = _mm_setzero_si128();
    std::uint64_t input = 0;
    for (; input + 4 <= inputUnits; input += 4) {
        const __m128i front =
            _mm_or_si128(PickLanes(from, masks, input), PickLanes(from, masks, input + 1));
        const __m128i back =
            _mm_or_si128(PickLanes(from, masks, input + 2), PickLanes(from, masks, input + 3));
        unit = _mm_or_si128(unit, _mm_or_si128(front, back));
    }
    for (; input < inputUnits; ++input)
        unit = _mm_or_si128(unit, PickLanes(from, masks, input));
    return unit;
}

void RemapUnits(void* chunkHeader, const void* block)
{
    const auto* masks = static_cast<const unsigned char*>(block);
    void* nextHeader = NextRegionOf(chunkHeader);
    const std::uint64_t inputUnits = CountUnits(PixelBytesOf(chunkHeader));
    const std::uint64_t outputUnits = CountUnits(PixelBytesOf(nextHeader));
    const std::uint64_t inputSlotBytes = inputUnits * unitBytes;
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(nextHeader);
    for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot) {
        for (std::uint64_t output = 0; output < outputUnits; ++output) {
            StoreSlotUnit(to, GatherUnit(from, inputUnits, masks + output * inputSlotBytes));
            to += unitBytes;
        }
        from += inputSlotBytes;
    }
}

} // namespace

ConvertMethod GetRemap(SlotUnits<1>)
{
    return RemapFixedUnits<1>;
}

ConvertMethod GetRemap(SlotUnits<2>)
{
    return RemapFixedUnits<2>;
}

ConvertMethod GetRemap(VariableSize)
{
    return RemapUnits;
}

} // namespace zvk::Pelkraft::VectorRoad
