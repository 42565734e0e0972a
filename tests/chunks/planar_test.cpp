#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Flush bothEnds[] = {Flush::AtEnd, Flush::AtStart};
constexpr unsigned char bothFills[] = {0x00, 0xFF};
constexpr std::size_t mostPlanes = 40;

// From the first plane's 16 samples to the last plane's, and not a byte more.
std::size_t SpanOf(const PlanarRow& row)
{
    return (row.planes - 1) * row.pitch + 16 * row.sampleBytes;
}

std::size_t ByteInRow(const PlanarRow& row, std::size_t pixel, std::size_t pixelByte)
{
    const std::size_t plane = pixelByte / row.sampleBytes;
    return plane * row.pitch + pixel * row.sampleBytes + pixelByte % row.sampleBytes;
}

// The pixels of a planar row side by side.
Bytes PixelsOfRow(const Bytes& content, const PlanarRow& row)
{
    const std::size_t pixelBytes = row.planes * row.sampleBytes;
    Bytes pixels(16 * pixelBytes);
    for (std::size_t at = 0; at < pixels.size(); ++at)
        pixels[at] = content[ByteInRow(row, at / pixelBytes, at % pixelBytes)];
    return pixels;
}

// The planes as close as a strip has them, with odd gaps, and far apart.
std::vector<PlanarRow> AllRows()
{
    std::vector<PlanarRow> rows;
    for (const std::size_t sampleBytes : {1U, 2U}) {
        for (std::size_t planes = 1; planes <= mostPlanes; ++planes) {
            for (const std::size_t gap : {0U, 1U, 4U, 15U, 985U})
                rows.push_back({planes, sampleBytes, 16 * sampleBytes + gap});
        }
    }
    return rows;
}

testing::Message Describe(const std::string& way, const PlanarRow& row)
{
    return testing::Message() << way << ", " << row.planes << " planes of " << row.sampleBytes
                              << " bytes, pitch " << row.pitch;
}

TEST(PlanarLoad, PutsTheSamplesOfAPixelSideBySide)
{
    for (const PlanarRow& row : AllRows()) {
        const std::size_t pixelBytes = row.planes * row.sampleBytes;
        const Bytes content = RandomBytes(SpanOf(row), 201);
        const Bytes expected = PixelsOfRow(content, row);
        for (const LoadWay& way : PlanarLoadWays(row)) {
            for (const unsigned char junk : bothFills) {
                for (const Flush flush : bothEnds) {
                    SCOPED_TRACE(Describe(way.name, row));
                    const GuardedBuffer source(content, flush);
                    const GuardedBuffer chunk = MakeChunk(pixelBytes, way.header, junk, flush);
                    const Bytes header = HeaderOf(chunk);
                    way.method(source.data(), chunk.data());
                    ASSERT_EQ(PixelsOf(chunk, pixelBytes), expected);
                    ASSERT_EQ(HeaderOf(chunk), header);
                    if (way.keepsPads) {
                        ASSERT_EQ(PadsOf(chunk, pixelBytes),
                                  Bytes(16 * (SlotBytes(pixelBytes) - pixelBytes), junk));
                    }
                }
            }
        }
    }
}

TEST(PlanarLoad, TakesARowAtAnyAddress)
{
    for (const PlanarRow& row : AllRows()) {
        const std::size_t pixelBytes = row.planes * row.sampleBytes;
        const Bytes content = RandomBytes(SpanOf(row), 202);
        const Bytes expected = PixelsOfRow(content, row);
        for (const LoadWay& way : PlanarLoadWays(row)) {
            for (const std::size_t gap : {1U, 2U, 3U, 15U}) {
                SCOPED_TRACE(Describe(way.name, row) << ", gap " << gap);
                const GuardedBuffer source(content, Flush::AtStart, gap);
                const GuardedBuffer chunk = MakeChunk(pixelBytes, way.header, 0xFF, Flush::AtEnd);
                way.method(source.data(), chunk.data());
                ASSERT_EQ(PixelsOf(chunk, pixelBytes), expected);
            }
        }
    }
}

TEST(PlanarSave, WritesSixteenSamplesOfEachPlaneAndNothingElse)
{
    for (const PlanarRow& row : AllRows()) {
        const std::size_t pixelBytes = row.planes * row.sampleBytes;
        const Bytes pixels = RandomBytes(16 * pixelBytes, 203);
        const Bytes before = RandomBytes(SpanOf(row), 204);
        Bytes expected = before;
        for (std::size_t at = 0; at < pixels.size(); ++at)
            expected[ByteInRow(row, at / pixelBytes, at % pixelBytes)] = pixels[at];
        for (const SaveWay& way : PlanarSaveWays(row)) {
            for (const unsigned char pad : bothFills) {
                for (const Flush flush : bothEnds) {
                    SCOPED_TRACE(Describe(way.name, row));
                    const GuardedBuffer chunk =
                        MakeFilledChunk(pixels, pixelBytes, way.header, pad, flush);
                    const Bytes chunkBefore = chunk.bytes();
                    const GuardedBuffer destination(before, flush);
                    way.method(chunk.data(), destination.data());
                    ASSERT_EQ(destination.bytes(), expected);
                    ASSERT_EQ(chunk.bytes(), chunkBefore);
                }
            }
        }
    }
}

TEST(PlanarSave, TakesARowAtAnyAddress)
{
    constexpr std::size_t margin = 40;
    for (const PlanarRow& row : AllRows()) {
        const std::size_t pixelBytes = row.planes * row.sampleBytes;
        const Bytes pixels = RandomBytes(16 * pixelBytes, 205);
        for (const SaveWay& way : PlanarSaveWays(row)) {
            for (const std::size_t shift : {1U, 2U, 3U, 15U}) {
                SCOPED_TRACE(Describe(way.name, row) << ", shift " << shift);
                const GuardedBuffer chunk =
                    MakeFilledChunk(pixels, pixelBytes, way.header, 0xFF, Flush::AtEnd);
                const GuardedBuffer around(SpanOf(row) + 2 * margin, Flush::AtStart, 0xA5);
                way.method(chunk.data(), around.data() + margin - shift);

                Bytes expected(around.size(), 0xA5);
                for (std::size_t at = 0; at < pixels.size(); ++at) {
                    expected[margin - shift + ByteInRow(row, at / pixelBytes, at % pixelBytes)] =
                        pixels[at];
                }
                ASSERT_EQ(around.bytes(), expected);
            }
        }
    }
}

TEST(PlanarPortable, MovesNothingForPixelsShorterThanASample)
{
    for (const std::size_t sampleBytes : {1U, 2U}) {
        for (std::size_t pixelBytes = 0; pixelBytes < sampleBytes; ++pixelBytes) {
            HeaderFields header;
            header.pixelBytes = pixelBytes;
            const GuardedBuffer row(0);
            const GuardedBuffer chunk = MakeChunk(pixelBytes, header, 0xFF, Flush::AtEnd);
            const Bytes before = chunk.bytes();
            PlanarLoadWays({1, sampleBytes, 0}).front().method(row.data(), chunk.data());
            EXPECT_EQ(chunk.bytes(), before);
            PlanarSaveWays({1, sampleBytes, 0}).front().method(chunk.data(), row.data());
            EXPECT_EQ(chunk.bytes(), before);
        }
    }
}

TEST(PlanarPortable, WalksTheOtherWayForANegativePitch)
{
    const Bytes content = RandomBytes(48, 206);
    HeaderFields header;
    header.pixelBytes = 3;
    header.loadPlanePitch = static_cast<std::uint64_t>(std::int64_t{-16});
    header.savePlanePitch = header.loadPlanePitch;
    const GuardedBuffer row(content);
    const GuardedBuffer chunk = MakeChunk(3, header, 0, Flush::AtEnd);
    PlanarLoadWays({3, 1, 16}).front().method(row.data() + 32, chunk.data());
    Bytes expected;
    for (std::size_t pixel = 0; pixel < 16; ++pixel) {
        for (const std::size_t plane : {2U, 1U, 0U})
            expected.push_back(content[16 * plane + pixel]);
    }
    EXPECT_EQ(PixelsOf(chunk, 3), expected);

    const GuardedBuffer back(48);
    PlanarSaveWays({3, 1, 16}).front().method(chunk.data(), back.data() + 32);
    EXPECT_EQ(back.bytes(), content);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
