#include "common/units.h"
#include "converters/chunk_slots.h"
#include "converters/convert_classes.h"
#include "converters/nbit_base.h"
#include "converters/word_access.h"

#include <cstdint>

namespace zvk::Pelkraft::PortableRoad {
namespace {

constexpr std::uint64_t wordBytes = sizeof(std::uint32_t);

struct PackBlock
{
    std::uint64_t gap;
    std::uint64_t slotBytes;
};

struct UnpackBlock
{
    std::uint64_t stride;
    std::uint64_t slotBytes;
};

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
    const std::uint64_t chunkBytes = slotsPerChunk * block.slotBytes + block.gap;
    for (std::uint64_t pass = 0; pass < slotsPerChunk; ++pass) {
        const std::uint64_t chunk = pass / passesPerChunk<depth>;
        const std::uint64_t slot = pass % passesPerChunk<depth> * pixelsPerByte<depth>;
        const unsigned char* from = column + chunk * chunkBytes + slot * block.slotBytes;
        StoreWord(column + pass * block.slotBytes, PackWord<depth>(from, block.slotBytes));
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
void UnpackColumn(unsigned char* column, const UnpackBlock& block)
{
    for (std::uint64_t pass = slotsPerChunk; pass-- != 0;) {
        const std::uint64_t chunk = pass / passesPerChunk<depth>;
        const std::uint64_t slot = pass % passesPerChunk<depth> * pixelsPerByte<depth>;
        unsigned char* to = column + chunk * block.stride + slot * block.slotBytes;
        const auto packed = LoadWord<std::uint32_t>(column + pass * block.slotBytes);
        UnpackWord<depth>(packed, to, block.slotBytes);
    }
}

template <int depth>
void UnpackChunks(void* firstChunkHeader, const void* parameters)
{
    const auto& block = *static_cast<const UnpackBlock*>(parameters);
    // Counted from the end of the slot and not from its start: the lanes in front of these
    // columns keep their bytes, and callers depend on it.
    const std::uint64_t coveredBytes = CoveredBytes(firstChunkHeader);
    for (std::uint64_t back = wordBytes; back <= coveredBytes; back += wordBytes)
        UnpackColumn<depth>(SlotsOf(firstChunkHeader) + (block.slotBytes - back), block);
}

template <int depth>
class Convert8bitToNbitX86 final : public Convert8bitToNbitBase<depth>
{
public:
    ConvertMethod GetConvertMethod(const ChunkConvertFacility&, const ImageRowFormat& input,
                                   const ChunkStepGeometry& geometry,
                                   void* parameters) const override
    {
        *static_cast<PackBlock*>(parameters) = {PackGap(input, geometry),
                                                RoundUpToUnit(PixelBytes(input))};
        return PackChunks<depth>;
    }
};

template <int depth>
class ConvertNbitTo8bitX86 final : public ConvertNbitTo8bitBase<depth>
{
public:
    ConvertMethod GetConvertMethod(const ChunkConvertFacility&, const ImageRowFormat& input,
                                   const ChunkStepGeometry& geometry,
                                   void* parameters) const override
    {
        *static_cast<UnpackBlock*>(parameters) = {UnpackStride(geometry),
                                                  RoundUpToUnit(PixelBytes(input))};
        return UnpackChunks<depth>;
    }
};

constexpr Convert8bitToNbitX86<1> packer1;
constexpr Convert8bitToNbitX86<2> packer2;
constexpr ConvertNbitTo8bitX86<1> unpacker1;
constexpr ConvertNbitTo8bitX86<2> unpacker2;

} // namespace

const IChunkConvertDescriptor* GetPacker(std::int32_t depth)
{
    if (depth == 1)
        return &packer1;
    return &packer2;
}

const IChunkConvertDescriptor* GetUnpacker(std::int32_t depth)
{
    if (depth == 1)
        return &unpacker1;
    return &unpacker2;
}

} // namespace zvk::Pelkraft::PortableRoad
