#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_methods.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

constexpr std::uint64_t wordBytes = sizeof(std::uint32_t);

// A packed byte holds the pixels of so many slots, so a chunk gives so many packed slots.
template <int depth>
constexpr std::uint64_t pixelsPerByte = 8 / depth;
template <int depth>
constexpr std::uint64_t passesPerChunk = slotsPerChunk / pixelsPerByte<depth>;

// The same bits of all four bytes of a word.
template <int depth>
constexpr std::uint32_t sampleMask = depth == 1 ? 0x01010101U : 0x03030303U;

// Bytes of a slot that are covered by columns of whole words.
std::uint64_t CoveredBytes(const void* chunkHeader)
{
    return (PixelBytesOf(chunkHeader) + wordBytes - 1) / wordBytes * wordBytes;
}

// No bit crosses the border of a byte: what is shifted out of one has not been shifted in yet.
template <int depth>
std::uint32_t PackWord(const unsigned char* from, std::uint64_t slotBytes)
{
    std::uint32_t packed = 0;
    for (std::uint64_t pixel = 0; pixel < pixelsPerByte<depth>; ++pixel) {
        const auto word = LoadWord<std::uint32_t>(from + pixel * slotBytes);
        packed = packed << depth | (word & sampleMask<depth>);
    }
    return packed;
}

// Ascending, so that each pass writes over slots that have been read.
template <int depth>
void PackColumn(unsigned char* column, const PackBlock& block)
{
    const std::uint64_t chunkBytes = slotsPerChunk * block.slotSize + block.gap;
    for (std::uint64_t pass = 0; pass < slotsPerChunk; ++pass) {
        const std::uint64_t chunk = pass / passesPerChunk<depth>;
        const std::uint64_t slot = pass % passesPerChunk<depth> * pixelsPerByte<depth>;
        const unsigned char* from = column + chunk * chunkBytes + slot * block.slotSize;
        StoreWord(column + pass * block.slotSize, PackWord<depth>(from, block.slotSize));
    }
}

template <int depth>
void PackChunks(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const PackBlock*>(parameters);
    const std::uint64_t coveredBytes = CoveredBytes(firstChunkHeader);
    for (std::uint64_t start = 0; start < coveredBytes; start += wordBytes)
        PackColumn<depth>(SlotsOf(firstChunkHeader) + start, block);
}

template <int depth>
void UnpackWord(std::uint32_t packed, unsigned char* to, std::uint64_t slotBytes)
{
    for (std::uint64_t pixel = pixelsPerByte<depth>; pixel-- != 0;) {
        StoreWord(to + pixel * slotBytes, packed & sampleMask<depth>);
        packed >>= depth;
    }
}

// Descending, so that each pass writes over slots that have been read.
template <int depth>
void UnpackColumn(unsigned char* column, const SpreadBlock& block)
{
    for (std::uint64_t pass = slotsPerChunk; pass-- != 0;) {
        const std::uint64_t chunk = pass / passesPerChunk<depth>;
        const std::uint64_t slot = pass % passesPerChunk<depth> * pixelsPerByte<depth>;
        unsigned char* to = column + chunk * block.stride + slot * block.slotSize;
        const auto packed = LoadWord<std::uint32_t>(column + pass * block.slotSize);
        UnpackWord<depth>(packed, to, block.slotSize);
    }
}

template <int depth>
void UnpackChunks(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const SpreadBlock*>(parameters);
    // Counted from the end of the slot and not from its start: the lanes before these columns
    // keep their bytes, and callers depend on it.
    const std::uint64_t coveredBytes = CoveredBytes(firstChunkHeader);
    for (std::uint64_t back = wordBytes; back <= coveredBytes; back += wordBytes)
        UnpackColumn<depth>(SlotsOf(firstChunkHeader) + (block.slotSize - back), block);
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

} // namespace zvk::Pelkraft::PortableRoad
