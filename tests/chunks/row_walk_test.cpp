#include "chunks/chunk_facility.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {
namespace {

using TestSupport::Flush;
using TestSupport::GuardedBuffer;
using TestSupport::RandomBytes;
using Bytes = std::vector<unsigned char>;

struct Shape
{
    std::int32_t layout;
    std::int32_t bits;
    std::int32_t channels;
};

constexpr std::int32_t levels[] = {0, 2, 3, 7};

std::vector<Shape> AllShapes()
{
    std::vector<Shape> shapes;
    for (const std::int32_t channels : {1, 2, 3, 8, 9, 16, 17, 40, 81, 130}) {
        for (const std::int32_t bits : {8, 10, 16}) {
            shapes.push_back({LayoutInterleaved, bits, channels});
            shapes.push_back({LayoutPlanar, bits, channels});
        }
        shapes.push_back({LayoutPlanarPacked, 1, channels});
    }
    return shapes;
}

ImageRowFormat MakeFormat(const Shape& shape, std::int64_t columns, bool reversed)
{
    ImageRowFormat format;
    format.layout = shape.layout;
    format.bits = shape.bits;
    format.channels = shape.channels;
    format.width = shape.layout == LayoutPlanarPacked ? 8 * columns : columns;
    format.activeWidth = format.width;
    format.reversed = reversed;
    return format;
}

std::size_t SampleBytes(const Shape& shape)
{
    return shape.bits > 8 ? 2 : 1;
}

// A sample's bytes begin there in a row of so many columns.
std::size_t SampleAt(const Shape& shape, std::size_t columns, std::size_t column,
                     std::size_t channel)
{
    const auto channels = static_cast<std::size_t>(shape.channels);
    const std::size_t index = shape.layout == LayoutInterleaved ? column * channels + channel
                                                                : channel * columns + column;
    return index * SampleBytes(shape);
}

// Puts count columns of one row into another, sample by sample.
void PlaceColumns(const Shape& shape, const Bytes& from, std::size_t fromColumns,
                  std::size_t fromFirst, Bytes& to, std::size_t toColumns, std::size_t toFirst,
                  std::size_t count)
{
    for (std::size_t column = 0; column < count; ++column) {
        for (std::size_t channel = 0; channel < static_cast<std::size_t>(shape.channels);
             ++channel) {
            for (std::size_t byte = 0; byte < SampleBytes(shape); ++byte) {
                to[SampleAt(shape, toColumns, toFirst + column, channel) + byte] =
                    from[SampleAt(shape, fromColumns, fromFirst + column, channel) + byte];
            }
        }
    }
}

TEST(RowWalk, StepsByTheBytesOfOneChunk)
{
    for (const Shape& shape : AllShapes()) {
        const auto pixelBytes = static_cast<std::int64_t>(SampleBytes(shape)) * shape.channels;
        const std::int64_t step = shape.layout == LayoutInterleaved ? 16 * pixelBytes
                                  : SampleBytes(shape) == 1         ? 16
                                                                    : 32;
        for (const std::int32_t level : levels) {
            SCOPED_TRACE(testing::Message() << shape.layout << " " << shape.bits << " "
                                            << shape.channels << " level " << level);
            const auto forward =
                ChunkLoadFacilityInternal::Create(MakeFormat(shape, 50, false), level);
            EXPECT_EQ(forward.descriptor->GetChunkStep(forward), step);
            EXPECT_EQ(forward.descriptor->GetPartialChunkSize(forward),
                      static_cast<std::uint64_t>(16 * pixelBytes));
            const auto backward =
                ChunkLoadFacilityInternal::Create(MakeFormat(shape, 50, true), level);
            EXPECT_EQ(backward.descriptor->GetChunkStep(backward), -step);
            EXPECT_EQ(backward.descriptor->GetPartialChunkSize(backward),
                      static_cast<std::uint64_t>(16 * pixelBytes));
            // A saver never runs backwards, whatever the format says.
            const auto save = ChunkSaveFacilityInternal::Create(MakeFormat(shape, 50, true), level);
            EXPECT_EQ(save.descriptor->GetChunkStep(save), step);
            EXPECT_EQ(save.descriptor->GetPartialChunkSize(save),
                      static_cast<std::uint64_t>(16 * pixelBytes));
        }
    }
}

TEST(RowWalk, BeginsSixteenColumnsBeforeTheEndOfAReversedRow)
{
    for (const Shape& shape : AllShapes()) {
        const auto columnBytes = static_cast<std::int64_t>(SampleBytes(shape)) *
                                 (shape.layout == LayoutInterleaved ? shape.channels : 1);
        for (const std::int32_t level : levels) {
            for (const std::int64_t columns : {0, 1, 15, 16, 17, 20, 100}) {
                SCOPED_TRACE(testing::Message() << shape.layout << " " << shape.bits << " "
                                                << shape.channels << " columns " << columns);
                const auto forward =
                    ChunkLoadFacilityInternal::Create(MakeFormat(shape, columns, false), level);
                EXPECT_EQ(forward.descriptor->GetFirstChunkOffset(forward), 0U);
                const auto backward =
                    ChunkLoadFacilityInternal::Create(MakeFormat(shape, columns, true), level);
                EXPECT_EQ(
                    static_cast<std::int64_t>(backward.descriptor->GetFirstChunkOffset(backward)),
                    (columns - 16) * columnBytes);
            }
        }
    }
}

// Columns of the row whose last ones, in the order of the walk, remain for the partial chunk.
std::vector<std::size_t> RowLengths(std::size_t count)
{
    return {count, count + 16, count + 32};
}

TEST(RowWalk, LoadsTheColumnsThatRemainAndClearsTheRestOfTheStrip)
{
    for (const Shape& shape : AllShapes()) {
        for (const bool reversed : {false, true}) {
            for (std::size_t count = 1; count <= 16; ++count) {
                for (const std::size_t columns : RowLengths(count)) {
                    SCOPED_TRACE(testing::Message()
                                 << shape.layout << " " << shape.bits << " " << shape.channels
                                 << " count " << count << " of " << columns << " " << reversed);
                    const std::size_t pixelBytes =
                        SampleBytes(shape) * static_cast<std::size_t>(shape.channels);
                    const Bytes content = RandomBytes(columns * pixelBytes, 17);
                    // A row without whole chunks is all pixels: one byte too far would fault.
                    const GuardedBuffer row(content, reversed ? Flush::AtStart : Flush::AtEnd);
                    const GuardedBuffer strip(16 * pixelBytes,
                                              reversed ? Flush::AtStart : Flush::AtEnd, 0xFF);
                    const auto facility = ChunkLoadFacilityInternal::Create(
                        MakeFormat(shape, static_cast<std::int64_t>(columns), reversed), 0);
                    const auto walked = static_cast<std::int64_t>((columns - count) / 16);
                    const std::int64_t offset =
                        static_cast<std::int64_t>(
                            facility.descriptor->GetFirstChunkOffset(facility)) +
                        walked * facility.descriptor->GetChunkStep(facility);
                    facility.descriptor->LoadPartialChunk(facility, {row.data(), offset},
                                                          strip.data(), count);

                    Bytes expected(16 * pixelBytes, 0);
                    PlaceColumns(shape, content, columns, reversed ? 0 : columns - count, expected,
                                 16, reversed ? 16 - count : 0, count);
                    ASSERT_EQ(strip.bytes(), expected);
                    ASSERT_EQ(row.bytes(), content);
                }
            }
        }
    }
}

TEST(RowWalk, SavesTheFirstColumnsOfTheStripAndNothingElse)
{
    for (const Shape& shape : AllShapes()) {
        for (std::size_t count = 1; count <= 16; ++count) {
            for (const std::size_t columns : RowLengths(count)) {
                SCOPED_TRACE(testing::Message() << shape.layout << " " << shape.bits << " "
                                                << shape.channels << " count " << count);
                const std::size_t pixelBytes =
                    SampleBytes(shape) * static_cast<std::size_t>(shape.channels);
                const Bytes content = RandomBytes(columns * pixelBytes, 18);
                const Bytes stripContent = RandomBytes(16 * pixelBytes, 19);
                const GuardedBuffer row(content);
                const GuardedBuffer strip(stripContent);
                const auto facility = ChunkSaveFacilityInternal::Create(
                    MakeFormat(shape, static_cast<std::int64_t>(columns), false), 0);
                const std::size_t offset =
                    (columns - count) / 16 *
                    static_cast<std::size_t>(facility.descriptor->GetChunkStep(facility));
                facility.descriptor->SavePartialChunk(facility, strip.data(), row.data() + offset,
                                                      count);

                Bytes expected = content;
                PlaceColumns(shape, stripContent, 16, 0, expected, columns, columns - count, count);
                ASSERT_EQ(row.bytes(), expected);
            }
        }
    }
}

TEST(RowWalk, MovesNothingForARowWithoutChannels)
{
    for (const std::int32_t layout : {LayoutInterleaved, LayoutPlanar}) {
        const ImageRowFormat format = MakeFormat({layout, 8, 0}, 20, true);
        const auto load = ChunkLoadFacilityInternal::Create(format, 0);
        EXPECT_EQ(load.descriptor->GetPartialChunkSize(load), 0U);
        load.descriptor->LoadPartialChunk(load, {nullptr, 0}, nullptr, 4);
        const auto save = ChunkSaveFacilityInternal::Create(format, 0);
        EXPECT_EQ(save.descriptor->GetPartialChunkSize(save), 0U);
        save.descriptor->SavePartialChunk(save, nullptr, nullptr, 4);
    }
}

} // namespace
} // namespace zvk::Pelkraft
