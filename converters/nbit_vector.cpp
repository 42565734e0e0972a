#include "common/inlining.h"
#include "common/slot_units_vector.h"
#include "common/units.h"
#include "common/unroll_vector.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"

#include <cstdint>

namespace zvk::Pelkraft::VectorRoad {
namespace {

// A packed byte holds the pixels of so many slots, so a chunk gives so many packed slots.
template <int depth>
constexpr int pixelsPerByte = 8 / depth;
template <int depth>
constexpr int passesPerChunk = slotsPerChunk / pixelsPerByte<depth>;

template <int depth>
__m128i SampleMask()
{
    return _mm_set1_epi8(depth == 1 ? 0x01 : 0x03);
}

// No bit crosses the border of a byte: what is shifted out of one has not been shifted in yet.
template <int depth>
PELKRAFT_ALWAYS_INLINE inline __m128i PackUnit(const unsigned char* from, std::uint64_t slotBytes)
{
    __m128i packed = _mm_setzero_si128();
    Unroll<pixelsPerByte<depth>>([&](auto pixel) {
        const auto slot = static_cast<std::uint64_t>(pixel);
        const __m128i samples =
            _mm_and_si128(LoadSlotUnit(from + slot * slotBytes), SampleMask<depth>());
        packed = _mm_or_si128(_mm_slli_epi16(packed, depth), samples);
    });
    return packed;
}

// Ascending, so that each pass writes over slots that have been read.
template <int depth>
void PackColumn(unsigned char* column, const PackBlock& block)
{
    const std::uint64_t slotBytes = block.slotSize * unitBytes;
    const std::uint64_t chunkBytes = slotsPerChunk * slotBytes + block.gap;
    unsigned char* to = column;
    for (std::uint64_t chunk = 0; chunk < pixelsPerByte<depth>; ++chunk) {
        const unsigned char* from = column + chunk * chunkBytes;
        Unroll<passesPerChunk<depth>>([&](auto pass) {
            const auto slot = static_cast<std::uint64_t>(pass) * pixelsPerByte<depth>;
            StoreSlotUnit(to, PackUnit<depth>(from + slot * slotBytes, slotBytes));
            to += slotBytes;
        });
    }
}

template <int depth>
void PackChunks(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const PackBlock*>(parameters);
    for (std::uint64_t unit = 0; unit < block.slotSize; ++unit)
        PackColumn<depth>(SlotsOf(firstChunkHeader) + unit * unitBytes, block);
}

template <int depth>
PELKRAFT_ALWAYS_INLINE inline void UnpackUnit(__m128i packed, unsigned char* to,
                                              std::uint64_t slotBytes)
{
    Unroll<pixelsPerByte<depth>>([&](auto step) {
        const auto slot = static_cast<std::uint64_t>(pixelsPerByte<depth> - 1 - step);
        StoreSlotUnit(to + slot * slotBytes, _mm_and_si128(packed, SampleMask<depth>()));
        packed = _mm_srli_epi16(packed, depth);
    });
}

// Descending, so that each pass writes over slots that have been read.
template <int depth>
void UnpackColumn(unsigned char* column, const SpreadBlock& block)
{
    const std::uint64_t slotBytes = block.slotSize * unitBytes;
    for (std::uint64_t chunk = pixelsPerByte<depth>; chunk-- != 0;) {
        const unsigned char* from = column + chunk * passesPerChunk<depth> * slotBytes;
        unsigned char* to = column + chunk * block.stride;
        Unroll<passesPerChunk<depth>>([&](auto step) {
            const auto pass = static_cast<std::uint64_t>(passesPerChunk<depth> - 1 - step);
            UnpackUnit<depth>(LoadSlotUnit(from + pass * slotBytes),
                              to + pass * pixelsPerByte<depth> * slotBytes, slotBytes);
        });
    }
}

template <int depth>
void UnpackChunks(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const SpreadBlock*>(parameters);
    for (std::uint64_t unit = block.slotSize; unit-- != 0;)
        UnpackColumn<depth>(SlotsOf(firstChunkHeader) + unit * unitBytes, block);
}

} // namespace

ConvertMethod GetPack(const ImageRowFormat&, int depth)
{
    return depth == 1 ? PackChunks<1> : PackChunks<2>;
}

ConvertMethod GetUnpack(const ImageRowFormat&, int depth)
{
    return depth == 1 ? UnpackChunks<1> : UnpackChunks<2>;
}

} // namespace zvk::Pelkraft::VectorRoad
