#include "portal/last_slot_mask.h"

#include "tests/support/guarded_buffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace zvk::Pelkraft {
namespace {

using TestSupport::GuardedBuffer;
using Bytes = std::vector<unsigned char>;

ImageRowFormat FormatOf(std::int32_t layout, std::int32_t bits)
{
    ImageRowFormat format;
    format.layout = layout;
    format.bits = bits;
    format.channels = 1;
    return format;
}

// A chunk full of ones behind its header.
class Chunk
{
public:
    explicit Chunk(std::size_t newPixelBytes)
        : pixelBytes(newPixelBytes), slotBytes((newPixelBytes + 15) / 16 * 16),
          memory(64 + 16 * slotBytes)
    {
        std::memset(memory.data(), 0xFF, memory.size());
        GetHeader()->pixelBytes = pixelBytes;
        expected = memory.bytes();
    }

    ChunkHeader* GetHeader() const { return reinterpret_cast<ChunkHeader*>(memory.data()); }

    void ExpectPixel(std::size_t slot, unsigned char value)
    {
        for (std::size_t i = 0; i != pixelBytes; ++i)
            expected[64 + slot * slotBytes + i] = value;
    }
    bool IsAsExpected() const { return memory.bytes() == expected; }

private:
    std::size_t pixelBytes;
    std::size_t slotBytes;
    GuardedBuffer memory;
    Bytes expected;
};

TEST(LastSlotMask, KeepsTheBitsInUseOfTheLastSlotOnly)
{
    // By the bits of the row's last byte that are in use.
    constexpr unsigned char masks[] = {0xFF, 0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE};
    for (const std::int32_t bits : {1, 2}) {
        for (std::int64_t pixels = 0; pixels != 40; ++pixels) {
            for (const std::size_t pixelBytes : {1U, 4U, 15U, 16U, 17U, 33U}) {
                for (std::size_t slot = 0; slot != 16; ++slot) {
                    SCOPED_TRACE(testing::Message() << pixels << " of " << bits << " bits, "
                                                    << pixelBytes << " planes, slot " << slot);
                    Chunk chunk(pixelBytes);
                    chunk.ExpectPixel(slot, masks[pixels * bits % 8]);
                    MaskLastSlot(chunk.GetHeader(), slot, FormatOf(LayoutPlanarPacked, bits),
                                 pixels);
                    ASSERT_TRUE(chunk.IsAsExpected());
                }
            }
        }
    }
}

TEST(LastSlotMask, LeavesRowsOfWholeBytesAlone)
{
    for (const ImageRowFormat& format :
         {FormatOf(LayoutPlanar, 8), FormatOf(LayoutPlanar, 16), FormatOf(LayoutInterleaved, 1),
          FormatOf(LayoutInterleaved, 2), FormatOf(LayoutInterleaved, 10),
          FormatOf(LayoutInterleaved, 16)}) {
        for (std::int64_t pixels = 0; pixels != 20; ++pixels) {
            const Chunk chunk(3);
            MaskLastSlot(chunk.GetHeader(), 5, format, pixels);
            ASSERT_TRUE(chunk.IsAsExpected()) << format.bits;
        }
    }
}

TEST(LastSlotMask, LooksAtTheLowBitsOfALongRow)
{
    Chunk chunk(1);
    chunk.ExpectPixel(2, 0xFE);
    MaskLastSlot(chunk.GetHeader(), 2, FormatOf(LayoutPlanarPacked, 1), 0x7FFFFFFF);
    EXPECT_TRUE(chunk.IsAsExpected());
}

} // namespace
} // namespace zvk::Pelkraft
