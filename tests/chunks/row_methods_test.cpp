#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Flush bothEnds[] = {Flush::AtEnd, Flush::AtStart};
constexpr unsigned char bothFills[] = {0x00, 0xFF};

// All trails over eleven unit counts, so that sizes taken at run time see more than the first.
constexpr std::size_t largestPixel = 176;

TEST(InterleavedLoad, PutsEachPixelAtTheStartOfItsSlot)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= largestPixel; ++pixelBytes) {
        const Bytes content = RandomBytes(16 * pixelBytes, 101);
        for (const LoadWay& way : InterleavedLoadWays(pixelBytes)) {
            for (const unsigned char junk : bothFills) {
                for (const Flush flush : bothEnds) {
                    SCOPED_TRACE(testing::Message() << way.name << ", " << pixelBytes << " bytes");
                    const GuardedBuffer row(content, flush);
                    const GuardedBuffer chunk = MakeChunk(pixelBytes, way.header, junk, flush);
                    const Bytes header = HeaderOf(chunk);
                    way.method(row.data(), chunk.data());

                    // A row has its pixels side by side, which is how PixelsOf lists them.
                    ASSERT_EQ(PixelsOf(chunk, pixelBytes), content);
                    ASSERT_EQ(HeaderOf(chunk), header);
                    ASSERT_EQ(row.bytes(), content);
                    if (way.keepsPads) {
                        ASSERT_EQ(PadsOf(chunk, pixelBytes),
                                  Bytes(16 * (SlotBytes(pixelBytes) - pixelBytes), junk));
                    }
                }
            }
        }
    }
}

TEST(InterleavedLoad, TakesARowAtAnyAddress)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= largestPixel; ++pixelBytes) {
        const Bytes content = RandomBytes(16 * pixelBytes, 102);
        for (const LoadWay& way : InterleavedLoadWays(pixelBytes)) {
            for (const std::size_t gap : {1U, 2U, 3U, 8U, 15U}) {
                SCOPED_TRACE(testing::Message()
                             << way.name << ", " << pixelBytes << " bytes, gap " << gap);
                const GuardedBuffer row(content, Flush::AtStart, gap);
                const GuardedBuffer chunk = MakeChunk(pixelBytes, way.header, 0xFF, Flush::AtEnd);
                way.method(row.data(), chunk.data());
                ASSERT_EQ(PixelsOf(chunk, pixelBytes), content);
            }
        }
    }
}

TEST(InterleavedLoad, ExpandsARowThatLiesAtTheEndOfItsOwnSlots)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= largestPixel; ++pixelBytes) {
        const Bytes content = RandomBytes(16 * pixelBytes, 103);
        for (const LoadWay& way : InterleavedLoadWays(pixelBytes)) {
            for (const Flush flush : bothEnds) {
                SCOPED_TRACE(testing::Message() << way.name << ", " << pixelBytes << " bytes");
                const GuardedBuffer chunk = MakeChunk(pixelBytes, way.header, 0xFF, flush);
                unsigned char* row =
                    chunk.data() + firstSlot + 16 * (SlotBytes(pixelBytes) - pixelBytes);
                std::memcpy(row, content.data(), content.size());
                way.method(row, chunk.data());
                ASSERT_EQ(PixelsOf(chunk, pixelBytes), content);
            }
        }
    }
}

TEST(InterleavedSave, PacksThePixelsAndDropsWhatLiesBehindThem)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= largestPixel; ++pixelBytes) {
        const Bytes pixels = RandomBytes(16 * pixelBytes, 104);
        for (const SaveWay& way : InterleavedSaveWays(pixelBytes)) {
            for (const unsigned char pad : bothFills) {
                for (const Flush flush : bothEnds) {
                    SCOPED_TRACE(testing::Message() << way.name << ", " << pixelBytes << " bytes");
                    const GuardedBuffer chunk =
                        MakeFilledChunk(pixels, pixelBytes, way.header, pad, flush);
                    const Bytes before = chunk.bytes();
                    const GuardedBuffer row(16 * pixelBytes, flush, 0xA5);
                    way.method(chunk.data(), row.data());
                    ASSERT_EQ(row.bytes(), pixels);
                    ASSERT_EQ(chunk.bytes(), before);
                }
            }
        }
    }
}

TEST(InterleavedSave, WritesNothingBesideTheRowAtAnyAddress)
{
    constexpr std::size_t margin = 40;
    for (std::size_t pixelBytes = 1; pixelBytes <= largestPixel; ++pixelBytes) {
        const Bytes pixels = RandomBytes(16 * pixelBytes, 105);
        for (const SaveWay& way : InterleavedSaveWays(pixelBytes)) {
            for (const std::size_t shift : {0U, 1U, 2U, 3U, 8U, 15U}) {
                SCOPED_TRACE(testing::Message()
                             << way.name << ", " << pixelBytes << " bytes, shift " << shift);
                const GuardedBuffer chunk =
                    MakeFilledChunk(pixels, pixelBytes, way.header, 0xFF, Flush::AtEnd);
                const GuardedBuffer around(2 * margin + pixels.size(), Flush::AtStart, 0xA5);
                way.method(chunk.data(), around.data() + margin - shift);

                Bytes expected(around.size(), 0xA5);
                std::memcpy(expected.data() + margin - shift, pixels.data(), pixels.size());
                ASSERT_EQ(around.bytes(), expected);
            }
        }
    }
}

TEST(InterleavedSave, GivesBackWhatALoadHasTaken)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= largestPixel; ++pixelBytes) {
        const Bytes content = RandomBytes(16 * pixelBytes, 106);
        const auto loadWays = InterleavedLoadWays(pixelBytes);
        const auto saveWays = InterleavedSaveWays(pixelBytes);
        for (std::size_t way = 0; way < loadWays.size(); ++way) {
            SCOPED_TRACE(testing::Message()
                         << loadWays[way].name << ", " << pixelBytes << " bytes");
            HeaderFields header = loadWays[way].header;
            header.saveUnitCount = saveWays[way].header.saveUnitCount;
            const GuardedBuffer from(content);
            const GuardedBuffer to(content.size(), Flush::AtEnd, 0xA5);
            const GuardedBuffer chunk = MakeChunk(pixelBytes, header, 0xFF, Flush::AtEnd);
            loadWays[way].method(from.data(), chunk.data());
            saveWays[way].method(chunk.data(), to.data());
            ASSERT_EQ(to.bytes(), content);
        }
    }
}

TEST(InterleavedPortable, MovesNothingForPixelsOfNoBytes)
{
    HeaderFields header;
    header.pixelBytes = 0;
    const GuardedBuffer chunk = MakeChunk(0, header, 0, Flush::AtEnd);
    const GuardedBuffer row(0);
    InterleavedLoadWays(1).front().method(row.data(), chunk.data());
    InterleavedSaveWays(1).front().method(chunk.data(), row.data());
    EXPECT_EQ(chunk.size(), firstSlot);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
