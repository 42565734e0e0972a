#include "portal/relocator.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace zvk::Pelkraft {
namespace {

using TestSupport::Flush;
using TestSupport::GuardedBuffer;
using TestSupport::RandomBytes;
using Bytes = std::vector<unsigned char>;

// A chunk with nothing behind it, whose slots hold junk.
class Chunk
{
public:
    explicit Chunk(std::size_t pixelBytes)
        : slotAreaBytes((pixelBytes + 15) / 16 * 256), memory(64 + slotAreaBytes)
    {
        std::memset(memory.data(), 0xC3, memory.size());
        GetHeader()->pixelBytes = pixelBytes;
        before = memory.bytes();
    }

    ChunkHeader* GetHeader() const { return reinterpret_cast<ChunkHeader*>(memory.data()); }
    const unsigned char* GetEnd() const { return memory.data() + memory.size(); }

    // What the chunk holds if only its last bytes were written.
    Bytes WithLastBytes(const Bytes& last) const
    {
        Bytes expected = before;
        std::memcpy(expected.data() + expected.size() - last.size(), last.data(), last.size());
        return expected;
    }
    Bytes GetBytes() const { return memory.bytes(); }
    const Bytes& GetBytesBefore() const { return before; }

private:
    std::size_t slotAreaBytes;
    GuardedBuffer memory;
    Bytes before;
};

void ExpectStagedAtTheChunksEnd(const unsigned char* row, const Bytes& pixels)
{
    const Chunk chunk(pixels.size() / 16);
    const unsigned char* staged = RelocateChunk(row, chunk.GetHeader());
    EXPECT_EQ(chunk.GetEnd() - pixels.size(), staged);
    EXPECT_EQ(chunk.WithLastBytes(pixels), chunk.GetBytes());
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
            ASSERT_EQ(0U, reinterpret_cast<std::uintptr_t>(memory.data()) % 16);
            ExpectStagedAtTheChunksEnd(
                memory.data() + offset,
                Bytes(memory.begin() + static_cast<std::ptrdiff_t>(offset), memory.end()));
        }
    }
}

TEST(ChunkRelocation, LeavesAnAlignedRowWhereItIs)
{
    for (std::size_t pixelBytes = 1; pixelBytes != 131; ++pixelBytes) {
        const GuardedBuffer row(RandomBytes(16 * pixelBytes, 3));
        const Chunk chunk(pixelBytes);
        EXPECT_EQ(row.data(), RelocateChunk(row.data(), chunk.GetHeader()));
        EXPECT_EQ(chunk.GetBytesBefore(), chunk.GetBytes());
    }
}

} // namespace
} // namespace zvk::Pelkraft
