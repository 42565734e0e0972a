#include "portal/last_slot_mask.h"
#include "tests/chunks/chunk_image.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

ImageRowFormat FormatOf(std::int32_t layout, std::int32_t bits)
{
    ImageRowFormat format;
    format.layout = layout;
    format.bits = bits;
    format.channels = 1;
    return format;
}

// Masks a slot of a chunk full of ones: of its pixel's bytes so many bits stay, and all the rest.
void ExpectMasked(unsigned char mask, std::size_t pixelBytes, std::size_t slot,
                  const ImageRowFormat& format, std::int64_t pixels)
{
    HeaderFields header;
    header.pixelBytes = pixelBytes;
    const GuardedBuffer chunk = MakeChunk(pixelBytes, header, 0xFF, Flush::AtEnd);
    Bytes expected = chunk.bytes();
    std::memset(expected.data() + firstSlot + slot * SlotBytes(pixelBytes), mask, pixelBytes);
    MaskLastSlot(reinterpret_cast<ChunkHeader*>(chunk.data()), slot, format, pixels);
    ASSERT_EQ(expected, chunk.bytes())
        << pixels << " of " << format.bits << " bits, " << pixelBytes << " planes, slot " << slot;
}

TEST(LastSlotMask, KeepsTheBitsInUseOfTheLastSlotOnly)
{
    // By the bits of the row's last byte that are in use.
    constexpr unsigned char masks[] = {0xFF, 0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE};
    for (const std::int32_t bits : {1, 2})
        for (std::int64_t pixels = 0; pixels != 40; ++pixels)
            for (const std::size_t pixelBytes : {1U, 4U, 15U, 16U, 17U, 33U})
                for (std::size_t slot = 0; slot != 16; ++slot)
                    ExpectMasked(masks[pixels * bits % 8], pixelBytes, slot,
                                 FormatOf(LayoutPlanarPacked, bits), pixels);
}

TEST(LastSlotMask, LeavesRowsOfWholeBytesAlone)
{
    for (const ImageRowFormat& format :
         {FormatOf(LayoutPlanar, 8), FormatOf(LayoutPlanar, 16), FormatOf(LayoutInterleaved, 1),
          FormatOf(LayoutInterleaved, 2), FormatOf(LayoutInterleaved, 10),
          FormatOf(LayoutInterleaved, 16)})
        for (std::int64_t pixels = 0; pixels != 20; ++pixels)
            ExpectMasked(0xFF, 3, 5, format, pixels);
}

TEST(LastSlotMask, LooksAtTheLowBitsOfALongRow)
{
    ExpectMasked(0xFE, 1, 2, FormatOf(LayoutPlanarPacked, 1), 0x7FFFFFFF);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
