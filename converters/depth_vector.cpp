#include "common/slot_units_vector.h"
#include "common/units.h"
#include "common/unroll_vector.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"

#include <cstdint>

namespace zvk::Pelkraft::VectorRoad {
namespace {

// low   a0 a0 a1 a1 ... a7 a7: each byte beside itself is the 16-bit sample of 257 times it
__m128i WidenLow(__m128i unit)
{
    return _mm_unpacklo_epi8(unit, unit);
}

// high  a8 a8 a9 a9 ... a15 a15
__m128i WidenHigh(__m128i unit)
{
    return _mm_unpackhi_epi8(unit, unit);
}

void WidenUnit(const unsigned char* from, unsigned char* to)
{
    const __m128i unit = LoadSlotUnit(from);
    StoreSlotUnit(to, WidenLow(unit));
    StoreSlotUnit(to + unitBytes, WidenHigh(unit));
}

void WidenOneUnit(void* chunkHeader, const void*)
{
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    Unroll<slotsPerChunk>([=](auto slot) {
        StoreSlotUnit(to + slot * unitBytes, WidenLow(LoadSlotUnit(from + slot * unitBytes)));
    });
}

// The last input unit of a slot is at most half full and gives one output unit.
void WidenToOddUnits(void* chunkHeader, const void*)
{
    const std::uint64_t unitCount = CountUnits(PixelBytesOf(chunkHeader));
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot) {
        for (std::uint64_t unit = 1; unit < unitCount; ++unit) {
            WidenUnit(from, to);
            from += unitBytes;
            to += 2 * unitBytes;
        }
        StoreSlotUnit(to, WidenLow(LoadSlotUnit(from)));
        from += unitBytes;
        to += unitBytes;
    }
}

// An output slot is exactly two input slots long: the slots are one stream.
void WidenToEvenUnits(void* chunkHeader, const void*)
{
    const std::uint64_t unitCount = slotsPerChunk * CountUnits(PixelBytesOf(chunkHeader));
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    for (std::uint64_t unit = 0; unit < unitCount; ++unit)
        WidenUnit(from + unit * unitBytes, to + 2 * unit * unitBytes);
}

// 127, not 128, after a product that is cut off: an input of 129 must still give 0.
__m128i NarrowSamples(__m128i samples)
{
    const __m128i high = _mm_mulhi_epu16(samples, _mm_set1_epi16(static_cast<short>(0xFF01)));
    return _mm_srli_epi16(_mm_add_epi16(high, _mm_set1_epi16(127)), 8);
}

__m128i NarrowPair(const unsigned char* from)
{
    return _mm_packus_epi16(NarrowSamples(LoadSlotUnit(from)),
                            NarrowSamples(LoadSlotUnit(from + unitBytes)));
}

// Stores its 8 bytes twice, which fills the pad of the unit.
__m128i NarrowSingle(const unsigned char* from)
{
    const __m128i samples = NarrowSamples(LoadSlotUnit(from));
    return _mm_packus_epi16(samples, samples);
}

void NarrowOneUnit(void* chunkHeader, const void*)
{
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    Unroll<slotsPerChunk>([=](auto slot) {
        StoreSlotUnit(to + slot * unitBytes, NarrowSingle(from + slot * unitBytes));
    });
}

void NarrowOddUnits(void* chunkHeader, const void*)
{
    const std::uint64_t unitCount = CountUnits(PixelBytesOf(chunkHeader));
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    for (std::uint64_t slot = 0; slot < slotsPerChunk; ++slot) {
        for (std::uint64_t pair = 0; pair < unitCount / 2; ++pair) {
            StoreSlotUnit(to, NarrowPair(from));
            from += 2 * unitBytes;
            to += unitBytes;
        }
        StoreSlotUnit(to, NarrowSingle(from));
        from += unitBytes;
        to += unitBytes;
    }
}

// An output slot is exactly half an input slot: the slots are one stream.
void NarrowEvenUnits(void* chunkHeader, const void*)
{
    const std::uint64_t pairCount = slotsPerChunk / 2 * CountUnits(PixelBytesOf(chunkHeader));
    const unsigned char* from = SlotsOf(chunkHeader);
    unsigned char* to = SlotsOf(NextRegionOf(chunkHeader));
    for (std::uint64_t pair = 0; pair < pairCount; ++pair)
        StoreSlotUnit(to + pair * unitBytes, NarrowPair(from + 2 * pair * unitBytes));
}

} // namespace

// Only the channels count, whatever depth the input claims.
ConvertMethod GetWiden(const ImageRowFormat& input)
{
    const auto channels = static_cast<std::uint64_t>(static_cast<std::int64_t>(input.channels));
    const std::uint64_t outputUnits = CountUnits(2 * channels);
    if (outputUnits == 1)
        return WidenOneUnit;
    return outputUnits % 2 != 0 ? WidenToOddUnits : WidenToEvenUnits;
}

ConvertMethod GetNarrow(const ImageRowFormat& input)
{
    const std::uint64_t inputUnits = CountUnits(PixelBytes(input));
    if (inputUnits == 1)
        return NarrowOneUnit;
    return inputUnits % 2 != 0 ? NarrowOddUnits : NarrowEvenUnits;
}

} // namespace zvk::Pelkraft::VectorRoad
