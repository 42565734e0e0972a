#include "chunks/chunk_facility.h"
#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::int32_t levels[] = {0, 2, 3, 7};

struct Row
{
    std::int32_t layout;
    std::int32_t bits;
    std::int32_t channels;
    std::size_t columns;
    bool reversed = false;

    std::size_t SampleBytes() const { return bits > 8 ? 2 : 1; }
    std::size_t PixelBytes() const { return SampleBytes() * static_cast<std::size_t>(channels); }
    std::size_t Bytes() const { return columns * PixelBytes(); }
    // A byte of a column's pixel stands there, from the definition of the layout.
    std::size_t ByteAt(std::size_t column, std::size_t byte) const
    {
        if (layout == LayoutInterleaved)
            return column * PixelBytes() + byte;
        const std::size_t plane = byte / SampleBytes();
        return (plane * columns + column) * SampleBytes() + byte % SampleBytes();
    }
};

// The last byte of a packed row is not full.
ImageRowFormat FormatOf(const Row& row)
{
    ImageRowFormat format;
    format.layout = row.layout;
    format.bits = row.bits;
    format.channels = row.channels;
    format.reversed = row.reversed;
    format.width = static_cast<std::int64_t>(row.columns);
    if (row.layout == LayoutPlanarPacked)
        format.width = std::max<std::int64_t>(0, 8 / row.bits * format.width - 3);
    format.activeWidth = format.width;
    return format;
}

void PrintTo(const Row& row, std::ostream* out)
{
    *out << row.layout << ", " << row.bits << " bits, " << row.channels << " channels, "
         << row.columns << " columns" << (row.reversed ? ", reversed" : "");
}

std::vector<Row> RowsOf(std::size_t columns, bool reversed)
{
    std::vector<Row> rows;
    for (const std::int32_t channels : {1, 2, 3, 4, 5, 8, 9, 16, 17, 33, 40, 81, 130}) {
        for (const std::int32_t bits : {8, 10, 16})
            for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar})
                rows.push_back({layout, bits, channels, columns, reversed});
        for (const std::int32_t bits : {1, 2})
            rows.push_back({LayoutPlanarPacked, bits, channels, columns, reversed});
    }
    return rows;
}

// Puts count columns of one row into another, byte by byte.
void PlaceColumns(const Row& from, const Bytes& content, std::size_t fromFirst, const Row& to,
                  Bytes& target, std::size_t toFirst, std::size_t count)
{
    for (std::size_t column = 0; column < count; ++column)
        for (std::size_t byte = 0; byte < from.PixelBytes(); ++byte)
            target[to.ByteAt(toFirst + column, byte)] =
                content[from.ByteAt(fromFirst + column, byte)];
}

Row StripOf(Row row)
{
    row.columns = 16;
    return row;
}

TEST(RowWalk, StepsByTheBytesOfOneChunk)
{
    for (const Row& row : RowsOf(50, true))
        for (const std::int32_t level : levels) {
            SCOPED_TRACE(testing::PrintToString(row));
            const std::size_t columnBytes =
                row.layout == LayoutInterleaved ? row.PixelBytes() : row.SampleBytes();
            const auto step = static_cast<std::int64_t>(16 * columnBytes);
            Row forwardRow = row;
            forwardRow.reversed = false;
            const auto forward = ChunkLoadFacilityInternal::Create(FormatOf(forwardRow), level);
            EXPECT_EQ(forward.descriptor->GetChunkStep(forward), step);
            EXPECT_EQ(forward.descriptor->GetPartialChunkSize(forward), 16 * row.PixelBytes());
            const auto backward = ChunkLoadFacilityInternal::Create(FormatOf(row), level);
            EXPECT_EQ(backward.descriptor->GetChunkStep(backward), -step);
            EXPECT_EQ(backward.descriptor->GetPartialChunkSize(backward), 16 * row.PixelBytes());
            // A saver never runs backwards, whatever the format says.
            const auto save = ChunkSaveFacilityInternal::Create(FormatOf(row), level);
            EXPECT_EQ(save.descriptor->GetChunkStep(save), step);
            EXPECT_EQ(save.descriptor->GetPartialChunkSize(save), 16 * row.PixelBytes());
        }
}

TEST(RowWalk, BeginsSixteenColumnsBeforeTheEndOfAReversedRow)
{
    for (const std::size_t columns : {0U, 1U, 15U, 16U, 17U, 20U, 100U})
        for (const bool reversed : {false, true})
            for (const Row& row : RowsOf(columns, reversed))
                for (const std::int32_t level : levels) {
                    const auto columnBytes = static_cast<std::int64_t>(
                        row.layout == LayoutInterleaved ? row.PixelBytes() : row.SampleBytes());
                    const std::int64_t first =
                        reversed ? (static_cast<std::int64_t>(columns) - 16) * columnBytes : 0;
                    const auto load = ChunkLoadFacilityInternal::Create(FormatOf(row), level);
                    EXPECT_EQ(static_cast<std::int64_t>(load.descriptor->GetFirstChunkOffset(load)),
                              first)
                        << testing::PrintToString(row);
                }
}

// Calls check(row, count) for rows of which count columns remain after whole chunks.
template <typename Check>
void ForEachRest(bool reversed, Check check)
{
    for (std::size_t count = 1; count <= 16; ++count)
        for (const std::size_t columns : {count, count + 16, count + 32})
            for (const Row& row : RowsOf(columns, reversed)) {
                SCOPED_TRACE(testing::PrintToString(row) + ", count " + std::to_string(count));
                check(row, count);
                if (testing::Test::HasFatalFailure())
                    return;
            }
}

TEST(RowWalk, LoadsTheColumnsThatRemainAndClearsTheRestOfTheStrip)
{
    for (const bool reversed : {false, true}) {
        ForEachRest(reversed, [=](const Row& row, std::size_t count) {
            const Bytes content = RandomBytes(row.Bytes(), 17);
            // A row without whole chunks is all pixels: one byte too far would fault.
            const Flush flush = reversed ? Flush::AtStart : Flush::AtEnd;
            const GuardedBuffer source(content, flush);
            const GuardedBuffer strip(16 * row.PixelBytes(), flush, 0xFF);
            const auto facility = ChunkLoadFacilityInternal::Create(FormatOf(row), 0);
            const auto walked = static_cast<std::int64_t>((row.columns - count) / 16);
            const std::int64_t offset =
                static_cast<std::int64_t>(facility.descriptor->GetFirstChunkOffset(facility)) +
                walked * facility.descriptor->GetChunkStep(facility);
            facility.descriptor->LoadPartialChunk(facility, {source.data(), offset}, strip.data(),
                                                  count);

            Bytes expected(16 * row.PixelBytes(), 0);
            PlaceColumns(row, content, reversed ? 0 : row.columns - count, StripOf(row), expected,
                         reversed ? 16 - count : 0, count);
            ASSERT_EQ(strip.bytes(), expected);
            ASSERT_EQ(source.bytes(), content);
        });
    }
}

TEST(RowWalk, SavesTheFirstColumnsOfTheStripAndNothingElse)
{
    ForEachRest(false, [](const Row& row, std::size_t count) {
        const Bytes stripContent = RandomBytes(16 * row.PixelBytes(), 19);
        Bytes expected = RandomBytes(row.Bytes(), 18);
        const GuardedBuffer destination(expected);
        const GuardedBuffer strip(stripContent);
        const auto facility = ChunkSaveFacilityInternal::Create(FormatOf(row), 0);
        const std::size_t offset =
            (row.columns - count) / 16 *
            static_cast<std::size_t>(facility.descriptor->GetChunkStep(facility));
        facility.descriptor->SavePartialChunk(facility, strip.data(), destination.data() + offset,
                                              count);

        PlaceColumns(StripOf(row), stripContent, 0, row, expected, row.columns - count, count);
        ASSERT_EQ(destination.bytes(), expected);
    });
}

TEST(RowWalk, MovesNothingForARowWithoutChannels)
{
    for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar}) {
        const ImageRowFormat format = FormatOf({layout, 8, 0, 20, true});
        const auto load = ChunkLoadFacilityInternal::Create(format, 0);
        EXPECT_EQ(load.descriptor->GetPartialChunkSize(load), 0U);
        load.descriptor->LoadPartialChunk(load, {nullptr, 0}, nullptr, 4);
        const auto save = ChunkSaveFacilityInternal::Create(format, 0);
        EXPECT_EQ(save.descriptor->GetPartialChunkSize(save), 0U);
        save.descriptor->SavePartialChunk(save, nullptr, nullptr, 4);
    }
}

HeaderFields HeaderFor(const Row& row, std::size_t columns)
{
    HeaderFields header;
    header.loadUnitCount = SlotBytes(row.PixelBytes()) / 16;
    header.saveUnitCount = header.loadUnitCount;
    header.loadPlanePitch = columns * row.SampleBytes();
    header.savePlanePitch = header.loadPlanePitch;
    header.pixelBytes = row.PixelBytes();
    return header;
}

// The columns of a row side by side.
Bytes ColumnsOf(const Row& row, const Bytes& content)
{
    Row dense = row;
    dense.layout = LayoutInterleaved;
    Bytes columns(content.size());
    PlaceColumns(row, content, 0, dense, columns, 0, row.columns);
    return columns;
}

// Walks a row in chunks, as a conversion does, and lists what it has loaded in the row's order.
Bytes LoadRow(const Row& row, std::int32_t level, const GuardedBuffer& source)
{
    const auto facility = ChunkLoadFacilityInternal::Create(FormatOf(row), level);
    const LoadMethod method = facility.descriptor->GetLoadMethod(facility);
    auto position = static_cast<std::int64_t>(facility.descriptor->GetFirstChunkOffset(facility));
    Bytes loaded;
    // Only some pixels of a partial chunk are the row's: the last ones if it is reversed.
    const auto load = [&](const unsigned char* from, std::size_t columns, std::size_t count) {
        const GuardedBuffer memory =
            MakeChunk(row.PixelBytes(), HeaderFor(row, columns), 0xFF, Flush::AtEnd);
        method(from, memory.data());
        const Bytes pixels = PixelsOf(memory, row.PixelBytes());
        const auto skipped =
            static_cast<std::ptrdiff_t>(row.reversed ? (16 - count) * row.PixelBytes() : 0);
        const auto bytes = static_cast<std::ptrdiff_t>(count * row.PixelBytes());
        loaded.insert(row.reversed ? loaded.begin() : loaded.end(), pixels.begin() + skipped,
                      pixels.begin() + skipped + bytes);
    };
    for (std::size_t chunk = 0; chunk < row.columns / 16; ++chunk) {
        load(source.data() + position, row.columns, 16);
        position += facility.descriptor->GetChunkStep(facility);
    }
    if (const std::size_t rest = row.columns % 16; rest != 0) {
        const GuardedBuffer strip(
            static_cast<std::size_t>(facility.descriptor->GetPartialChunkSize(facility)));
        facility.descriptor->LoadPartialChunk(facility, {source.data(), position}, strip.data(),
                                              rest);
        load(strip.data(), 16, rest);
    }
    return loaded;
}

// The way back, from columns side by side.
void SaveRow(const Row& row, std::int32_t level, Bytes columns, const GuardedBuffer& destination)
{
    const auto facility = ChunkSaveFacilityInternal::Create(FormatOf(row), level);
    const SaveMethod method = facility.descriptor->GetLoadMethod(facility);
    const std::size_t chunkBytes = 16 * row.PixelBytes();
    unsigned char* position = destination.data();
    columns.resize((row.columns + 15) / 16 * chunkBytes, 0xFF);
    const auto chunkAt = [&](std::size_t chunk, std::size_t pitchColumns) {
        const auto first = columns.begin() + static_cast<std::ptrdiff_t>(chunk * chunkBytes);
        const Bytes pixels(first, first + static_cast<std::ptrdiff_t>(chunkBytes));
        return MakeFilledChunk(pixels, row.PixelBytes(), HeaderFor(row, pitchColumns), 0xFF,
                               Flush::AtEnd);
    };
    for (std::size_t chunk = 0; chunk < row.columns / 16; ++chunk) {
        method(chunkAt(chunk, row.columns).data(), position);
        position += facility.descriptor->GetChunkStep(facility);
    }
    if (const std::size_t rest = row.columns % 16; rest != 0) {
        const GuardedBuffer strip(
            static_cast<std::size_t>(facility.descriptor->GetPartialChunkSize(facility)));
        method(chunkAt(row.columns / 16, 16).data(), strip.data());
        facility.descriptor->SavePartialChunk(facility, strip.data(), position, rest);
    }
}

void ExpectLoadedAndSavedBack(const Row& row, std::int32_t level, Flush flush)
{
    SCOPED_TRACE(testing::PrintToString(row) + " at level " + std::to_string(level));
    const Bytes content = RandomBytes(row.Bytes(), 301);
    const GuardedBuffer source(content, flush);
    const Bytes loaded = LoadRow(row, level, source);
    ASSERT_EQ(loaded, ColumnsOf(row, content));
    const GuardedBuffer destination(content.size(), flush, 0xA5);
    SaveRow(row, level, loaded, destination);
    ASSERT_EQ(destination.bytes(), content);
}

TEST(WholeRow, IsLoadedColumnByColumnAndSavedBack)
{
    for (const std::size_t columns : {1U, 4U, 15U, 16U, 17U, 20U, 31U, 32U, 33U, 60U})
        for (const bool reversed : {false, true})
            for (const Row& row : RowsOf(columns, reversed))
                for (const std::int32_t level : {0, 3})
                    for (const Flush flush : {Flush::AtEnd, Flush::AtStart})
                        ExpectLoadedAndSavedBack(row, level, flush);
}

TEST(WholeRow, HasPlanesLongerThan16Bits)
{
    for (const std::int32_t bits : {8, 16})
        for (const bool reversed : {false, true})
            ExpectLoadedAndSavedBack({LayoutPlanar, bits, 2, 70001, reversed}, 3, Flush::AtEnd);
}

// Three planes of 200 pixels at a bit each: one chunk of 16 columns, and 9 that remain.
TEST(WholeRow, CountsAPackedRowInBytes)
{
    const Row row{LayoutPlanarPacked, 1, 3, 25};
    ImageRowFormat format = FormatOf(row);
    format.width = 200;
    const auto facility = ChunkLoadFacilityInternal::Create(format, 3);
    EXPECT_EQ(facility.columns, 25U);
    EXPECT_EQ(facility.descriptor->GetChunkStep(facility), 16);
    EXPECT_EQ(facility.descriptor->GetPartialChunkSize(facility), 48U);
    const Bytes content = RandomBytes(75, 302);
    const GuardedBuffer source(content);
    EXPECT_EQ(LoadRow(row, 3, source), ColumnsOf(row, content));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
