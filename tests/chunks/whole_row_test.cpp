#include "chunks/chunk_facility.h"
#include "tests/chunks/chunk_image.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

struct RowCase
{
    std::int32_t layout;
    std::int32_t bits;
    std::int32_t channels;
    // Counted in pixels, of which a packed row has several in a column.
    std::int64_t width;
    std::size_t columns;
    bool reversed;
    std::int32_t level;

    std::size_t SampleBytes() const { return bits > 8 ? 2 : 1; }
    std::size_t PixelBytes() const { return SampleBytes() * static_cast<std::size_t>(channels); }
    std::size_t RowBytes() const { return columns * PixelBytes(); }
};

ImageRowFormat FormatOf(const RowCase& row)
{
    ImageRowFormat format;
    format.layout = row.layout;
    format.bits = row.bits;
    format.channels = row.channels;
    format.reversed = row.reversed;
    format.width = row.width;
    format.activeWidth = row.width;
    return format;
}

HeaderFields HeaderFor(const RowCase& row, std::size_t columns)
{
    HeaderFields header;
    header.loadUnitCount = SlotBytes(row.PixelBytes()) / 16;
    header.saveUnitCount = header.loadUnitCount;
    header.loadPlanePitch = columns * row.SampleBytes();
    header.savePlanePitch = header.loadPlanePitch;
    header.pixelBytes = row.PixelBytes();
    return header;
}

// The columns of a row side by side, from the definition of its layout.
Bytes ColumnsOf(const RowCase& row, const Bytes& content)
{
    Bytes columns(content.size());
    for (std::size_t at = 0; at < content.size(); ++at) {
        const std::size_t column = at / row.PixelBytes();
        const std::size_t byte = at % row.PixelBytes();
        const std::size_t plane = byte / row.SampleBytes();
        const std::size_t inPlanes =
            (plane * row.columns + column) * row.SampleBytes() + byte % row.SampleBytes();
        columns[at] = content[row.layout == LayoutInterleaved ? at : inPlanes];
    }
    return columns;
}

// Walks a row in chunks, as a conversion does, and lists what it has loaded in the row's order.
Bytes LoadRow(const RowCase& row, const GuardedBuffer& source)
{
    const auto facility = ChunkLoadFacilityInternal::Create(FormatOf(row), row.level);
    const LoadMethod method = facility.descriptor->GetLoadMethod(facility);
    auto position = static_cast<std::int64_t>(facility.descriptor->GetFirstChunkOffset(facility));
    Bytes loaded;
    const auto keep = [&](const Bytes& pixels) {
        loaded.insert(row.reversed ? loaded.begin() : loaded.end(), pixels.begin(), pixels.end());
    };
    for (std::size_t chunk = 0; chunk < row.columns / 16; ++chunk) {
        const GuardedBuffer memory =
            MakeChunk(row.PixelBytes(), HeaderFor(row, row.columns), 0xFF, Flush::AtEnd);
        method(source.data() + position, memory.data());
        keep(PixelsOf(memory, row.PixelBytes()));
        position += facility.descriptor->GetChunkStep(facility);
    }
    if (const std::size_t rest = row.columns % 16; rest != 0) {
        const GuardedBuffer memory =
            MakeChunk(row.PixelBytes(), HeaderFor(row, 16), 0xFF, Flush::AtEnd);
        const GuardedBuffer strip(
            static_cast<std::size_t>(facility.descriptor->GetPartialChunkSize(facility)));
        facility.descriptor->LoadPartialChunk(facility, {source.data(), position}, strip.data(),
                                              rest);
        method(strip.data(), memory.data());
        Bytes pixels = PixelsOf(memory, row.PixelBytes());
        const auto bytes = static_cast<std::ptrdiff_t>(rest * row.PixelBytes());
        if (row.reversed)
            pixels.erase(pixels.begin(), pixels.end() - bytes);
        else
            pixels.erase(pixels.begin() + bytes, pixels.end());
        keep(pixels);
    }
    return loaded;
}

// The way back, from columns side by side.
void SaveRow(const RowCase& row, const Bytes& columns, const GuardedBuffer& destination)
{
    const auto facility = ChunkSaveFacilityInternal::Create(FormatOf(row), row.level);
    const SaveMethod method = facility.descriptor->GetLoadMethod(facility);
    const std::size_t chunkBytes = 16 * row.PixelBytes();
    std::size_t position = 0;
    Bytes padded = columns;
    padded.resize((row.columns + 15) / 16 * chunkBytes, 0xFF);
    const auto chunkAt = [&](std::size_t chunk, std::size_t pitchColumns) {
        const auto first = padded.begin() + static_cast<std::ptrdiff_t>(chunk * chunkBytes);
        const Bytes pixels(first, first + static_cast<std::ptrdiff_t>(chunkBytes));
        return MakeFilledChunk(pixels, row.PixelBytes(), HeaderFor(row, pitchColumns), 0xFF,
                               Flush::AtEnd);
    };
    for (std::size_t chunk = 0; chunk < row.columns / 16; ++chunk) {
        method(chunkAt(chunk, row.columns).data(), destination.data() + position);
        position += static_cast<std::size_t>(facility.descriptor->GetChunkStep(facility));
    }
    if (const std::size_t rest = row.columns % 16; rest != 0) {
        const GuardedBuffer strip(
            static_cast<std::size_t>(facility.descriptor->GetPartialChunkSize(facility)));
        method(chunkAt(row.columns / 16, 16).data(), strip.data());
        facility.descriptor->SavePartialChunk(facility, strip.data(), destination.data() + position,
                                              rest);
    }
}

std::vector<RowCase> AllRows(std::int32_t level, bool reversed)
{
    std::vector<RowCase> rows;
    for (const std::int32_t channels : {1, 2, 3, 4, 5, 8, 9, 16, 17, 33, 81}) {
        for (const std::size_t columns : {1U, 4U, 15U, 16U, 17U, 20U, 31U, 32U, 33U, 60U}) {
            const auto width = static_cast<std::int64_t>(columns);
            for (const std::int32_t bits : {8, 16}) {
                rows.push_back(
                    {LayoutInterleaved, bits, channels, width, columns, reversed, level});
                rows.push_back({LayoutPlanar, bits, channels, width, columns, reversed, level});
            }
            rows.push_back(
                {LayoutPlanarPacked, 1, channels, 8 * width - 3, columns, reversed, level});
            rows.push_back(
                {LayoutPlanarPacked, 2, channels, 4 * width - 3, columns, reversed, level});
        }
    }
    return rows;
}

TEST(WholeRow, IsLoadedColumnByColumnAndSavedBack)
{
    for (const std::int32_t level : {0, 3}) {
        for (const bool reversed : {false, true}) {
            for (const RowCase& row : AllRows(level, reversed)) {
                SCOPED_TRACE(testing::Message()
                             << row.layout << ", " << row.bits << " bits, " << row.channels
                             << " channels, " << row.columns << " columns, level " << level
                             << (reversed ? ", reversed" : ""));
                const Bytes content = RandomBytes(row.RowBytes(), 301);
                for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                    const GuardedBuffer source(content, flush);
                    const Bytes columns = LoadRow(row, source);
                    ASSERT_EQ(columns, ColumnsOf(row, content));
                    const GuardedBuffer destination(content.size(), flush, 0xA5);
                    SaveRow(row, columns, destination);
                    ASSERT_EQ(destination.bytes(), content);
                }
            }
        }
    }
}

// Three planes of 200 pixels at a bit each: one chunk of 16 columns, and 9 that remain.
TEST(WholeRow, CountsAPackedRowInBytes)
{
    const RowCase row{LayoutPlanarPacked, 1, 3, 200, 25, false, 3};
    const auto facility = ChunkLoadFacilityInternal::Create(FormatOf(row), 3);
    EXPECT_EQ(facility.columns, 25U);
    EXPECT_EQ(facility.descriptor->GetChunkStep(facility), 16);
    EXPECT_EQ(facility.descriptor->GetPartialChunkSize(facility), 48U);
    const Bytes content = RandomBytes(75, 302);
    const GuardedBuffer source(content);
    EXPECT_EQ(LoadRow(row, source), ColumnsOf(row, content));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
