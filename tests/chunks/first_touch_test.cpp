#include "tests/chunks/chunk_image.h"
#include "tests/chunks/watched_pages.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

// All rows without a gap between planes, up to pixels of so many bytes.
std::vector<ChunkRow> DenseRows(std::size_t largestPixel)
{
    std::vector<ChunkRow> rows;
    for (std::size_t bytes = 1; bytes <= largestPixel; ++bytes)
        rows.insert(rows.end(), {InterleavedRow(bytes), PlanarRow(bytes, 1), PlanarRow(bytes, 2)});
    return rows;
}

std::string NameOf(const Way& way, const ChunkRow& row)
{
    return way.name + ", " + std::to_string(row.planes) + " planes of " +
           std::to_string(row.sampleBytes);
}

// From each unit of the row on, the first touch is a write: none is read before it is written.
TEST(Save, NeverReadsTheRow)
{
    WatchedPages pages(Side::After);
    for (const ChunkRow& row : DenseRows(50))
        for (const Way& way : WaysOf(End::Save, row)) {
            const std::size_t units = row.PixelBytes();
            const Bytes pixels = RandomBytes(16 * units, 401);
            const GuardedBuffer chunk =
                MakeFilledChunk(pixels, units, way.header, 0xFF, Flush::AtEnd);
            for (std::size_t unit = 0; unit < units; ++unit) {
                unsigned char* to = pages.GetBorder() - 16 * unit;
                ASSERT_EQ(pages.Watch([&] { way.method(chunk.data(), to); }), Touch::Write)
                    << NameOf(way, row) << ", unit " << unit;
            }
        }
}

// The header is closed; the slots begin at the border.
TEST(Method, OfAKnownSizeOrOfOnePlaneTouchesNoHeader)
{
    WatchedPages pages(Side::Before);
    unsigned char* chunk = pages.GetBorder() - firstSlot;
    for (const ChunkRow& row : DenseRows(80))
        for (const End end : {End::Load, End::Save})
            for (const Way& way : WaysOf(end, row)) {
                if (way.name != "vector" || row.planes > 1)
                    continue;
                const GuardedBuffer pixels(16 * row.PixelBytes());
                const auto move = [&] {
                    if (end == End::Load)
                        way.method(pixels.data(), chunk);
                    else
                        way.method(chunk, pixels.data());
                };
                ASSERT_EQ(pages.Watch(move), Touch::None) << NameOf(way, row);
            }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
