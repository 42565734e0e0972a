#include "pattern/sse_row.h"

#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#if defined(PELKRAFT_VECTOR_ROAD)

namespace zvk::Pelkraft {
namespace {

using TestSupport::Flush;
using TestSupport::GuardedBuffer;
using TestSupport::RandomBytes;

// Tables of any bytes at all: whatever they hold, both loops must read it alike.
std::vector<SseTransformation> RandomTables(std::size_t count, std::uint32_t seed)
{
    std::vector<SseTransformation> tables(count);
    const auto bytes = RandomBytes(count * sizeof(SseTransformation), seed);
    std::memcpy(tables.data(), bytes.data(), bytes.size());
    // Every second table has bounds and offsets as patterns have them.
    for (std::size_t i = 0; i < count; i += 2)
        for (std::size_t lane = 0; lane < 16; ++lane) {
            tables[i].mUpper[lane] &= 7;
            tables[i].mLower[lane] &= 3;
            tables[i].mOffset[lane] &= 15;
        }
    return tables;
}

SseLanes RandomLanes(std::uint32_t inColors, std::uint32_t outInks, std::uint32_t seed)
{
    SseLanes lanes;
    const auto bytes = RandomBytes(32, seed);
    for (std::size_t i = 0; i < inColors; ++i)
        lanes.mStepLimits[i] = seed % 3 == 0 ? bytes[i] : bytes[i] & 7;
    for (std::size_t i = 0; i < outInks; ++i) {
        lanes.mInColorLanes[i] =
            bytes[16 + i] % 5 == 0 ? 0xFF : static_cast<std::uint8_t>(bytes[16 + i] % inColors);
    }
    return lanes;
}

std::vector<unsigned char> ApplyRow(SseRowMethod method, SseRow row, Flush flush,
                                    std::uint32_t seed)
{
    const GuardedBuffer source(RandomBytes(std::size_t{row.pixels} * row.sourceStride, seed),
                               flush);
    const GuardedBuffer destination(std::size_t{row.pixels} * row.destinationStride, flush, 0x5A);
    row.source = source.data();
    row.destination = destination.data();
    method(row);
    return destination.bytes();
}

TEST(SseRow, IsTheSameByVectorsAndLaneByLane)
{
    const auto tables = RandomTables(8, 1);
    std::vector<const SseTransformation*> field;
    for (const unsigned char number : RandomBytes(37, 2))
        field.push_back(&tables[number % tables.size()]);

    std::uint32_t seed = 0;
    for (std::uint32_t inColors = 1; inColors <= 16; ++inColors)
        for (std::uint32_t outInks = 1; outInks <= 16; ++outInks)
            for (const std::uint32_t pixels : {0U, 1U, 3U, 15U, 16U, 17U, 36U, 37U, 38U, 100U}) {
                const SseLanes lanes = RandomLanes(inColors, outInks, ++seed);
                const SseRow row = {.source = nullptr,
                                    .destination = nullptr,
                                    .pixels = pixels,
                                    .sourceStride = inColors,
                                    .destinationStride = outInks,
                                    .lanes = &lanes,
                                    .field = field.data(),
                                    .position = seed % 37,
                                    .fieldSize = 37,
                                    .single = seed % 4 == 0 ? &tables[seed % 8] : nullptr};
                const Flush flush = seed % 2 == 0 ? Flush::AtEnd : Flush::AtStart;
                ASSERT_EQ(ApplyRow(GetSseRowMethodVector(), row, flush, seed),
                          ApplyRow(GetSseRowMethodPortable(), row, flush, seed))
                    << inColors << " " << outInks << " " << pixels;
            }
}

} // namespace
} // namespace zvk::Pelkraft

#endif
