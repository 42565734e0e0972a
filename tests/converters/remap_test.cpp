#include "tests/converters/chunk_memory.h"
#include "tests/converters/step_runner.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Table = std::vector<std::int32_t>;

std::size_t SampleBytes(std::int32_t bits)
{
    return bits > 8 ? 2 : 1;
}

struct Shape
{
    std::int32_t bits;
    std::size_t channels;
    Table table;
};

ChunkMemory MemoryOf(const Shape& shape, std::uint32_t seed,
                     RegionOrder order = RegionOrder::Forward, Flush flush = Flush::AtEnd)
{
    const std::size_t sampleBytes = SampleBytes(shape.bits);
    return ChunkMemory({{sampleBytes * shape.channels}, {sampleBytes * shape.table.size()}}, seed,
                       flush, order);
}

StepCall RemapCall(const Shape& shape, const Road& road)
{
    return {
        ChunkConvertFacility::Create_Remap(road.sseVersion, shape.table.size(), shape.table.data()),
        FormatOf(shape.bits, shape.channels),
        {1, 1, 0, 0}};
}

constexpr std::int64_t noLane = -1;

// The lane of the input slot that an entry reads on a road, counted from the slot's first byte.
std::int64_t NaiveLane(std::int64_t entry, const Shape& shape, const Road& road,
                       std::size_t slotBytes)
{
    const auto channels = static_cast<std::int64_t>(shape.channels);
    const auto lanes = static_cast<std::int64_t>(slotBytes / SampleBytes(shape.bits));
    if (entry < 0)
        return noLane;
    if (entry < channels)
        return entry;
    if (!road.isVector)
        return channels;
    return entry < lanes ? entry : noLane;
}

// The memory holds this after the step on chunk `from` of the input region.
Bytes NaiveRemap(Bytes bytes, const ChunkMemory& memory, const Shape& shape, const Road& road,
                 std::size_t from = 0, std::size_t to = 0)
{
    const Bytes before = bytes;
    const std::size_t sampleBytes = SampleBytes(shape.bits);
    const std::size_t pixelBytes = shape.table.size() * sampleBytes;
    for (std::size_t slot = 0; slot < 16; ++slot) {
        const std::size_t input = memory.SlotStart(0, from, slot);
        const std::size_t output = memory.SlotStart(1, to, slot);
        for (std::size_t byte = 0; byte < pixelBytes; ++byte) {
            const std::int64_t lane =
                NaiveLane(shape.table[byte / sampleBytes], shape, road, memory.SlotBytes(0));
            bytes[output + byte] =
                lane == noLane ? 0
                               : before[input + static_cast<std::size_t>(lane) * sampleBytes +
                                        byte % sampleBytes];
        }
        // The vector road leaves no pad as it was.
        for (std::size_t byte = pixelBytes; road.isVector && byte < memory.SlotBytes(1); ++byte)
            bytes[output + byte] = 0;
    }
    return bytes;
}

Table Identity(std::size_t channels)
{
    Table table(channels);
    for (std::size_t channel = 0; channel < channels; ++channel)
        table[channel] = static_cast<std::int32_t>(channel);
    return table;
}

Table Permutation(std::size_t channels, std::uint32_t seed)
{
    Table table = Identity(channels);
    std::mt19937 engine(seed);
    for (std::size_t channel = channels; channel > 1; --channel)
        std::swap(table[channel - 1], table[engine() % channel]);
    return table;
}

// Entries from `lowest` on, `range` of them, drawn with a fixed seed.
Table Drawn(std::size_t size, std::int32_t lowest, std::size_t range, std::uint32_t seed)
{
    std::mt19937 engine(seed);
    Table table(size);
    for (std::int32_t& entry : table)
        entry = lowest + static_cast<std::int32_t>(engine() % range);
    return table;
}

// Tables that a careful caller writes: no entry at or above the channel count.
std::vector<Table> RightTables(std::size_t channels)
{
    const auto seed = static_cast<std::uint32_t>(channels);
    std::vector<Table> tables = {Identity(channels), Permutation(channels, seed)};
    tables.push_back(Drawn(channels + 3, 0, channels, seed));                   // growing
    tables.push_back(Drawn(channels / 2 + 1, 0, channels, seed));               // shrinking
    tables.push_back(Drawn(channels, -3, channels + 3, seed));                  // with gaps
    tables.push_back(Table(channels, static_cast<std::int32_t>(channels - 1))); // repeated
    tables.push_back(Table(channels, -1));                                      // all gaps
    tables.push_back(Drawn(7, 0, channels, seed));
    tables.push_back(Drawn(40, -1, channels + 1, seed));
    tables.push_back(Drawn(100, 0, channels, seed));
    return tables;
}

std::string NameOf(const Road& road, const Shape& shape)
{
    return std::string(road.name) + ", bits " + std::to_string(shape.bits) + ", channels " +
           std::to_string(shape.channels) + " to " + std::to_string(shape.table.size());
}

void ExpectNaive(const Shape& shape, RegionOrder order = RegionOrder::Forward,
                 Flush flush = Flush::AtEnd)
{
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(NameOf(road, shape));
        const ChunkMemory memory = MemoryOf(shape, 31, order, flush);
        const Bytes expected = NaiveRemap(memory.bytes(), memory, shape, road);
        RunStep(RemapCall(shape, road), memory.Header(0));
        ASSERT_EQ(expected, memory.bytes());
    }
}

class Remap : public testing::TestWithParam<std::int32_t>
{};

TEST_P(Remap, RebuildsTheChannelsOfEveryCount)
{
    for (std::size_t channels = 1; channels <= 130; ++channels)
        for (const Table& table : RightTables(channels))
            ExpectNaive({GetParam(), channels, table});
}

TEST_P(Remap, StaysBetweenTheEndsOfItsChunks)
{
    for (const std::size_t channels : {1U, 8U, 9U, 16U, 17U, 33U, 64U})
        for (const Table& table : RightTables(channels))
            for (const RegionOrder order : {RegionOrder::Forward, RegionOrder::Backward})
                for (const Flush flush : {Flush::AtEnd, Flush::AtStart})
                    ExpectNaive({GetParam(), channels, table}, order, flush);
}

TEST_P(Remap, ReadsEntriesOutOfRangeAsItsRoadDoes)
{
    const std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    const std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    for (std::size_t channels = 1; channels <= 40; ++channels) {
        const auto lane = static_cast<std::int32_t>(channels);
        const auto lanes = static_cast<std::int32_t>((channels * SampleBytes(GetParam()) + 15) /
                                                     16 * 16 / SampleBytes(GetParam()));
        ExpectNaive({GetParam(), channels, {lane, lane + 1, lanes - 1, lanes, lanes + 1}});
        ExpectNaive({GetParam(), channels, {highest, lowest, 0, -1, 256, 65536, lanes + 256}});
        ExpectNaive({GetParam(), channels, Drawn(37, -5, 3 * channels + 40, 77)});
        ExpectNaive({GetParam(), channels, Drawn(channels, -5, 3 * channels + 40, 78)});
    }
}

TEST_P(Remap, FollowsTheLinkFromAnyChunkOfItsRegion)
{
    const std::size_t sampleBytes = SampleBytes(GetParam());
    for (const std::size_t channels : {4U, 16U, 17U, 40U})
        for (const Road& road : AvailableRoads())
            for (std::size_t turn = 0; turn < 3; ++turn) {
                const Shape shape = {GetParam(), channels, Permutation(channels, 3)};
                SCOPED_TRACE(NameOf(road, shape));
                const ChunkMemory memory(
                    {{sampleBytes * channels, 6, 1, 2}, {sampleBytes * channels, 12, 4, 1}}, 5);
                const Bytes expected =
                    NaiveRemap(memory.bytes(), memory, shape, road, 2 * turn, 4 * turn);
                RunStep(RemapCall(shape, road), memory.Header(0, 2 * turn));
                ASSERT_EQ(expected, memory.bytes());
            }
}

TEST_P(Remap, GivesEqualPixelsOnBothRoadsForARightTable)
{
    for (const std::size_t channels : {1U, 4U, 8U, 9U, 16U, 17U, 32U, 33U, 130U})
        for (const Table& table : RightTables(channels)) {
            const Shape shape = {GetParam(), channels, table};
            std::vector<Bytes> pixels;
            for (const Road& road : AvailableRoads()) {
                const ChunkMemory memory = MemoryOf(shape, 41);
                RunStep(RemapCall(shape, road), memory.Header(0));
                const Bytes bytes = memory.bytes();
                Bytes real;
                for (std::size_t slot = 0; slot < 16; ++slot)
                    for (std::size_t byte = 0; byte < SampleBytes(GetParam()) * shape.table.size();
                         ++byte)
                        real.push_back(bytes[memory.SlotStart(1, 0, slot) + byte]);
                pixels.push_back(real);
            }
            ASSERT_EQ(pixels.front(), pixels.back());
        }
}

INSTANTIATE_TEST_SUITE_P(EveryDepth, Remap, testing::Values(1, 2, 8, 10, 16),
                         [](const testing::TestParamInfo<std::int32_t>& depth) {
                             return "Bits" + std::to_string(depth.param);
                         });

// The first output pixel of a chunk whose every lane, pad included, holds 100 plus its number.
std::vector<unsigned> FirstPixel(const Shape& shape, const Road& road)
{
    const std::size_t sampleBytes = SampleBytes(shape.bits);
    const ChunkMemory memory = MemoryOf(shape, 51);
    for (std::size_t slot = 0; slot < 16; ++slot)
        for (std::size_t byte = 0; byte < memory.SlotBytes(0); ++byte)
            memory.SetByte(memory.SlotStart(0, 0, slot) + byte,
                           static_cast<unsigned char>(100 + byte / sampleBytes));
    RunStep(RemapCall(shape, road), memory.Header(0));
    const Bytes bytes = memory.bytes();
    std::vector<unsigned> pixel;
    for (std::size_t channel = 0; channel < shape.table.size(); ++channel)
        pixel.push_back(bytes[memory.SlotStart(1, 0, 0) + channel * sampleBytes]);
    return pixel;
}

TEST(RemapEntry, NamesAChannelOrNone)
{
    using Pixel = std::vector<unsigned>;
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ((Pixel{102, 100, 0, 101}), FirstPixel({8, 4, {2, 0, -1, 1}}, road));
        EXPECT_EQ((Pixel{100, 100, 100}), FirstPixel({8, 4, {0, 0, 0}}, road));
        EXPECT_EQ((Pixel{100, 100, 100}), FirstPixel({16, 4, {0, 0, 0}}, road));
    }
}

TEST(RemapEntry, ReadsPadLanesAsItsRoadDoes)
{
    using Pixel = std::vector<unsigned>;
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(road.name);
        const unsigned five = road.isVector ? 105 : 104;
        const unsigned sixteen = road.isVector ? 0 : 104;
        EXPECT_EQ((Pixel{five, sixteen, 103}), FirstPixel({8, 4, {5, 16, 3}}, road));
        const unsigned seven = road.isVector ? 107 : 105;
        const unsigned eight = road.isVector ? 0 : 105;
        EXPECT_EQ((Pixel{seven, eight}), FirstPixel({16, 5, {7, 8}}, road));
        // A slot without pad: the lane after it is the next pixel's first.
        const unsigned next = road.isVector ? 0 : 100;
        EXPECT_EQ((Pixel{107, next}), FirstPixel({16, 8, {7, 8}}, road));
    }
}

TEST(RemapEntry, AtTheCountOfAFullSlotReadsBehindThePixelOnThePortableRoad)
{
    const Road portable = {"portable", 0, false};
    const Shape shape = {8, 16, {16}};
    const ChunkMemory memory = MemoryOf(shape, 61);
    const Bytes before = memory.bytes();
    RunStep(RemapCall(shape, portable), memory.Header(0));
    const Bytes after = memory.bytes();
    for (std::size_t slot = 0; slot < 15; ++slot)
        EXPECT_EQ(before[memory.SlotStart(0, 0, slot + 1)], after[memory.SlotStart(1, 0, slot)]);
    // The header of the output chunk follows the last slot.
    EXPECT_EQ(before[memory.SlotStart(0, 0, 15) + 16], after[memory.SlotStart(1, 0, 15)]);
}

Bytes BlockOf(const Shape& shape, const Road& road)
{
    const StepCall call = RemapCall(shape, road);
    const IChunkConvertDescriptor& member = *call.facility.select(call.facility, call.input);
    ChunkConvertMetrics metrics{};
    member.GetMetrics(metrics, call.facility, call.input);
    const GuardedBuffer block(static_cast<std::size_t>(metrics.parameterBytes), Flush::AtEnd, 0xA5);
    member.GetConvertMethod(call.facility, call.input, call.geometry, block.data());
    return block.bytes();
}

TEST(RemapBlock, HoldsAMaskPerPairOfUnitsOnTheVectorRoad)
{
    if (!HasVectorRoad())
        return;
    const Road vector = {"vector", 3, true};
    // Beyond the depths of rows too: a lane has two bytes for 9 to 16 bits alone.
    for (const std::int32_t bits : {2, 7, 8, 9, 10, 15, 16, 17, 24, 32})
        for (const std::size_t channels : {4U, 16U, 20U, 40U, 70U})
            for (const std::size_t size : {1U, 4U, 16U, 20U, 40U}) {
                const Shape shape = {bits, channels, Drawn(size, -3, channels + 30, 71)};
                const std::size_t laneBytes = bits >= 9 && bits <= 16 ? 2 : 1;
                const auto sampleBytes = static_cast<std::size_t>((bits + 7) / 8);
                const std::size_t inputUnits = (channels * sampleBytes + 15) / 16;
                const std::size_t outputUnits = (size * sampleBytes + 15) / 16;
                Bytes expected(outputUnits * inputUnits * 16, 0x80);
                for (std::size_t c = 0; c < size; ++c)
                    for (std::size_t i = 0; i < inputUnits; ++i) {
                        const std::int64_t r = shape.table[c];
                        const auto lanesPerUnit = static_cast<std::int64_t>(16 / laneBytes);
                        if (r < 0 || r / lanesPerUnit != static_cast<std::int64_t>(i))
                            continue;
                        const std::size_t at =
                            c * laneBytes / 16 * inputUnits * 16 + i * 16 + c * laneBytes % 16;
                        for (std::size_t byte = 0; byte < laneBytes; ++byte)
                            expected[at + byte] = static_cast<unsigned char>(
                                static_cast<std::size_t>(r % lanesPerUnit) * laneBytes + byte);
                    }
                ASSERT_EQ(expected, BlockOf(shape, vector)) << bits << ' ' << channels;
            }
}

TEST(RemapBlock, HoldsALaneOrMinusOnePerChannelOnThePortableRoad)
{
    const std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    const std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    const Shape shape = {8, 4, {0, 3, 4, 5, highest, -1, -2, lowest}};
    const std::int64_t expected[] = {0, 3, 4, 4, 4, -1, -1, -1};
    const Bytes block = BlockOf(shape, {"portable", 0, false});
    ASSERT_EQ(sizeof expected, block.size());
    EXPECT_EQ(0, std::memcmp(expected, block.data(), block.size()));
}

TEST(Remap, WritesNoPixelForATableOfNoEntries)
{
    for (const Road& road : AvailableRoads()) {
        const Shape shape = {8, 4, {}};
        const ChunkMemory memory = MemoryOf(shape, 81);
        const Bytes before = memory.bytes();
        RunStep(RemapCall(shape, road), memory.Header(0));
        EXPECT_EQ(before, memory.bytes()) << road.name;
    }
}

// A record without channels, asked of the members with slots of known size.
TEST(RemapMasks, AreAllEmptyWithoutOutputChannels)
{
    if (!HasVectorRoad())
        return;
    const Table table = {0};
    const auto facility = ChunkConvertFacility::Create_Remap(3, 0, table.data());
    for (const std::size_t units : {1U, 2U}) {
        const ImageRowFormat input = FormatOf(8, 16 * units);
        const auto filled = ChunkConvertFacility::Create_Remap(3, 16 * units, table.data());
        const IChunkConvertDescriptor* member = filled.select(filled, input);
        const GuardedBuffer block(16 * units * units, Flush::AtEnd, 0xA5);
        member->GetConvertMethod(facility, input, {1, 1, 0, 0}, block.data());
        EXPECT_EQ(Bytes(block.size(), 0x80), block.bytes());
    }
}

TEST(RemapMember, ForAnyUnitsServesOneAndTwoToo)
{
    if (!HasVectorRoad())
        return;
    const Road vector = {"vector", 3, true};
    for (const std::int32_t bits : {8, 16})
        for (const std::size_t channels : {1U, 4U, 8U, 16U, 20U, 32U}) {
            const Shape shape = {bits, channels, Drawn(channels, -2, channels + 2, 91)};
            SCOPED_TRACE(NameOf(vector, shape));
            const ChunkMemory memory = MemoryOf(shape, 92);
            const Bytes expected = NaiveRemap(memory.bytes(), memory, shape, vector);
            const StepCall call = RemapCall(shape, vector);
            RunDescriptor(*call.facility.select(call.facility, FormatOf(bits, 100)), call,
                          memory.Header(0));
            EXPECT_EQ(expected, memory.bytes());
        }
}
} // namespace
} // namespace zvk::Pelkraft::TestSupport
