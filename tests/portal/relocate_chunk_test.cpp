#include "portal/relocator.h"
#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {
namespace {

GuardedBuffer JunkChunk(std::size_t pixelBytes)
{
    HeaderFields header;
    header.pixelBytes = pixelBytes;
    return MakeChunk(pixelBytes, header, 0xC3, Flush::AtEnd);
}

const unsigned char* Relocate(const unsigned char* row, const GuardedBuffer& chunk)
{
    return RelocateChunk(row, reinterpret_cast<ChunkHeader*>(chunk.data()));
}

void ExpectStagedAtTheChunksEnd(const unsigned char* row, const Bytes& pixels)
{
    const GuardedBuffer chunk = JunkChunk(pixels.size() / 16);
    Bytes expected = chunk.bytes();
    std::copy(pixels.rbegin(), pixels.rend(), expected.rbegin());
    EXPECT_EQ(chunk.data() + chunk.size() - pixels.size(), Relocate(row, chunk));
    EXPECT_EQ(expected, chunk.bytes());
}

TEST(ChunkRelocation, StagesAnUnalignedRowAtTheEndOfTheSlots)
{
    for (std::size_t pixelBytes = 1; pixelBytes != 131; ++pixelBytes) {
        const Bytes pixels = RandomBytes(16 * pixelBytes, static_cast<std::uint32_t>(pixelBytes));
        for (std::size_t offset = 1; offset != 16; ++offset) {
            SCOPED_TRACE(testing::Message() << pixelBytes << " bytes at " << offset);
            const GuardedBuffer atStart(pixels, Flush::AtStart, offset);
            ExpectStagedAtTheChunksEnd(atStart.data(), pixels);
            const GuardedBuffer atEnd(pixels, Flush::AtEnd, 16 - offset);
            ASSERT_EQ(offset, reinterpret_cast<std::uintptr_t>(atEnd.data()) % 16);
            ExpectStagedAtTheChunksEnd(atEnd.data(), pixels);
        }
    }
}

// Pages end at aligned places; memory from the heap lets a sanitizer see the very next byte.
TEST(ChunkRelocation, ReadsNoByteBehindTheRow)
{
    for (const std::size_t pixelBytes : {1U, 3U, 16U, 17U, 33U}) {
        for (std::size_t offset = 1; offset != 16; ++offset) {
            const Bytes memory = RandomBytes(offset + 16 * pixelBytes, 7);
            const unsigned char* const row = memory.data() + offset;
            // A heap that aligns to 8 bytes makes one of the rows an aligned one.
            if (reinterpret_cast<std::uintptr_t>(row) % 16 == 0)
                continue;
            ExpectStagedAtTheChunksEnd(
                row, Bytes(memory.begin() + static_cast<std::ptrdiff_t>(offset), memory.end()));
        }
    }
}

TEST(ChunkRelocation, LeavesAnAlignedRowWhereItIs)
{
    for (std::size_t pixelBytes = 1; pixelBytes != 131; ++pixelBytes) {
        const GuardedBuffer row(RandomBytes(16 * pixelBytes, 3));
        const GuardedBuffer chunk = JunkChunk(pixelBytes);
        const Bytes before = chunk.bytes();
        EXPECT_EQ(row.data(), Relocate(row.data(), chunk));
        EXPECT_EQ(before, chunk.bytes());
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
