#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr Flush bothEnds[] = {Flush::AtEnd, Flush::AtStart};
constexpr unsigned char bothFills[] = {0x00, 0xFF};

// All trails over eleven unit counts, so that sizes taken at run time see more than the first.
std::vector<ChunkRow> InterleavedRows()
{
    std::vector<ChunkRow> rows;
    for (std::size_t pixelBytes = 1; pixelBytes <= 176; ++pixelBytes)
        rows.push_back(InterleavedRow(pixelBytes));
    return rows;
}

// The planes stand as close as in a strip, with odd gaps, and far apart.
std::vector<ChunkRow> PlanarRows()
{
    std::vector<ChunkRow> rows;
    for (const std::size_t sampleBytes : {1U, 2U})
        for (std::size_t planes = 1; planes <= 40; ++planes)
            for (const std::size_t gap : {0U, 1U, 4U, 15U, 985U})
                rows.push_back(PlanarRow(planes, sampleBytes, gap));
    return rows;
}

// From the first plane's 16 samples to the last plane's, and not a byte more.
std::size_t SpanOf(const ChunkRow& row)
{
    return (row.planes - 1) * row.pitch + 16 * row.sampleBytes;
}

// The place in the row of the byte that stands at `at` where the pixels stand side by side.
std::size_t ByteInRow(const ChunkRow& row, std::size_t at)
{
    const std::size_t pixel = at / row.PixelBytes();
    const std::size_t byte = at % row.PixelBytes();
    return byte / row.sampleBytes * row.pitch + pixel * row.sampleBytes + byte % row.sampleBytes;
}

Bytes PixelsOfRow(const Bytes& content, const ChunkRow& row)
{
    Bytes pixels(16 * row.PixelBytes());
    for (std::size_t at = 0; at < pixels.size(); ++at)
        pixels[at] = content[ByteInRow(row, at)];
    return pixels;
}

void PutPixels(const Bytes& pixels, const ChunkRow& row, unsigned char* start)
{
    for (std::size_t at = 0; at < pixels.size(); ++at)
        start[ByteInRow(row, at)] = pixels[at];
}

class RowMethods : public testing::TestWithParam<std::vector<ChunkRow>>
{
protected:
    // Calls check(row, way) for all rows and ways of an end.
    template <typename Check>
    static void ForEachWay(End end, Check check)
    {
        for (const ChunkRow& row : GetParam())
            for (const Way& way : WaysOf(end, row)) {
                SCOPED_TRACE(testing::Message()
                             << way.name << ", " << row.planes << " planes of " << row.sampleBytes
                             << " bytes, pitch " << row.pitch);
                check(row, way);
                if (HasFatalFailure())
                    return;
            }
    }
};

TEST_P(RowMethods, LoadEachPixelToTheStartOfItsSlot)
{
    ForEachWay(End::Load, [](const ChunkRow& row, const Way& way) {
        const Bytes content = RandomBytes(SpanOf(row), 101);
        for (const unsigned char junk : bothFills)
            for (const Flush flush : bothEnds) {
                const GuardedBuffer source(content, flush);
                const GuardedBuffer chunk = MakeChunk(row.PixelBytes(), way.header, junk, flush);
                const Bytes header = HeaderOf(chunk);
                way.method(source.data(), chunk.data());
                ASSERT_EQ(PixelsOf(chunk, row.PixelBytes()), PixelsOfRow(content, row));
                ASSERT_EQ(HeaderOf(chunk), header);
                ASSERT_EQ(source.bytes(), content);
                const Bytes pads = PadsOf(chunk, row.PixelBytes());
                if (way.keepsPads) {
                    ASSERT_EQ(pads, Bytes(pads.size(), junk));
                }
            }
    });
}

TEST_P(RowMethods, LoadFromAnyAddress)
{
    ForEachWay(End::Load, [](const ChunkRow& row, const Way& way) {
        const Bytes content = RandomBytes(SpanOf(row), 102);
        for (const std::size_t gap : {1U, 2U, 3U, 8U, 15U}) {
            const GuardedBuffer source(content, Flush::AtStart, gap);
            const GuardedBuffer chunk = MakeChunk(row.PixelBytes(), way.header, 0xFF, Flush::AtEnd);
            way.method(source.data(), chunk.data());
            ASSERT_EQ(PixelsOf(chunk, row.PixelBytes()), PixelsOfRow(content, row)) << gap;
        }
    });
}

TEST_P(RowMethods, SaveThePixelsAndNothingElse)
{
    ForEachWay(End::Save, [](const ChunkRow& row, const Way& way) {
        const Bytes pixels = RandomBytes(16 * row.PixelBytes(), 104);
        const Bytes before = RandomBytes(SpanOf(row), 105);
        Bytes expected = before;
        PutPixels(pixels, row, expected.data());
        for (const unsigned char pad : bothFills)
            for (const Flush flush : bothEnds) {
                const GuardedBuffer chunk =
                    MakeFilledChunk(pixels, row.PixelBytes(), way.header, pad, flush);
                const Bytes chunkBefore = chunk.bytes();
                const GuardedBuffer destination(before, flush);
                way.method(chunk.data(), destination.data());
                ASSERT_EQ(destination.bytes(), expected);
                ASSERT_EQ(chunk.bytes(), chunkBefore);
            }
    });
}

TEST_P(RowMethods, SaveToAnyAddress)
{
    constexpr std::size_t margin = 40;
    ForEachWay(End::Save, [](const ChunkRow& row, const Way& way) {
        const Bytes pixels = RandomBytes(16 * row.PixelBytes(), 106);
        const GuardedBuffer chunk =
            MakeFilledChunk(pixels, row.PixelBytes(), way.header, 0xFF, Flush::AtEnd);
        for (const std::size_t shift : {0U, 1U, 2U, 3U, 8U, 15U}) {
            const GuardedBuffer around(SpanOf(row) + 2 * margin, Flush::AtStart, 0xA5);
            way.method(chunk.data(), around.data() + margin - shift);
            Bytes expected(around.size(), 0xA5);
            PutPixels(pixels, row, expected.data() + margin - shift);
            ASSERT_EQ(around.bytes(), expected) << shift;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(OfAllSizes, RowMethods, testing::Values(InterleavedRows(), PlanarRows()),
                         [](const auto& rows) {
                             return rows.param[0].layout == LayoutInterleaved ? "Interleaved"
                                                                              : "Planar";
                         });

TEST(InterleavedLoad, ExpandsARowThatLiesAtTheEndOfItsOwnSlots)
{
    for (const ChunkRow& row : InterleavedRows()) {
        const std::size_t pixelBytes = row.PixelBytes();
        const Bytes content = RandomBytes(16 * pixelBytes, 103);
        for (const Way& way : WaysOf(End::Load, row))
            for (const Flush flush : bothEnds) {
                SCOPED_TRACE(testing::Message() << way.name << ", " << pixelBytes << " bytes");
                const GuardedBuffer chunk = MakeChunk(pixelBytes, way.header, 0xFF, flush);
                unsigned char* start =
                    chunk.data() + firstSlot + 16 * (SlotBytes(pixelBytes) - pixelBytes);
                std::memcpy(start, content.data(), content.size());
                way.method(start, chunk.data());
                ASSERT_EQ(PixelsOf(chunk, pixelBytes), content);
            }
    }
}

// A chunk that a load has filled serves a save as it is, junk after the pixels included.
TEST(InterleavedSave, GivesBackWhatALoadHasTaken)
{
    for (const ChunkRow& row : InterleavedRows()) {
        const std::size_t pixelBytes = row.PixelBytes();
        const Bytes content = RandomBytes(16 * pixelBytes, 107);
        const std::vector<Way> loads = WaysOf(End::Load, row);
        const std::vector<Way> saves = WaysOf(End::Save, row);
        for (std::size_t way = 0; way < loads.size(); ++way) {
            HeaderFields header = loads[way].header;
            header.saveUnitCount = saves[way].header.saveUnitCount;
            const GuardedBuffer from(content);
            const GuardedBuffer to(content.size(), Flush::AtEnd, 0xA5);
            const GuardedBuffer chunk = MakeChunk(pixelBytes, header, 0xFF, Flush::AtEnd);
            loads[way].method(from.data(), chunk.data());
            saves[way].method(chunk.data(), to.data());
            ASSERT_EQ(to.bytes(), content) << loads[way].name << ", " << pixelBytes << " bytes";
        }
    }
}

TEST(PortableMethods, MoveNothingForPixelsShorterThanASample)
{
    for (const ChunkRow& row : {InterleavedRow(1), PlanarRow(1, 1), PlanarRow(1, 2)})
        for (std::size_t pixelBytes = 0; pixelBytes < row.sampleBytes; ++pixelBytes) {
            HeaderFields header;
            header.pixelBytes = pixelBytes;
            const GuardedBuffer none(0);
            const GuardedBuffer chunk = MakeChunk(pixelBytes, header, 0xFF, Flush::AtEnd);
            const Bytes before = chunk.bytes();
            WaysOf(End::Load, row).front().method(none.data(), chunk.data());
            EXPECT_EQ(chunk.bytes(), before);
            WaysOf(End::Save, row).front().method(chunk.data(), none.data());
            EXPECT_EQ(chunk.bytes(), before);
        }
}

TEST(PortableMethods, WalkTheOtherWayForANegativePitch)
{
    const Bytes content = RandomBytes(48, 206);
    HeaderFields header;
    header.pixelBytes = 3;
    header.loadPlanePitch = static_cast<std::uint64_t>(std::int64_t{-16});
    header.savePlanePitch = header.loadPlanePitch;
    const GuardedBuffer row(content);
    const GuardedBuffer chunk = MakeChunk(3, header, 0, Flush::AtEnd);
    WaysOf(End::Load, PlanarRow(3, 1)).front().method(row.data() + 32, chunk.data());
    Bytes expected;
    for (std::size_t pixel = 0; pixel < 16; ++pixel)
        for (const std::size_t plane : {2U, 1U, 0U})
            expected.push_back(content[16 * plane + pixel]);
    EXPECT_EQ(PixelsOf(chunk, 3), expected);

    const GuardedBuffer back(48);
    WaysOf(End::Save, PlanarRow(3, 1)).front().method(chunk.data(), back.data() + 32);
    EXPECT_EQ(back.bytes(), content);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
