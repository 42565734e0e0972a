#include "tests/converters/chunk_memory.h"
#include "tests/converters/step_runner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A packing or unpacking step as the portal may place it: its unpacked chunks stand `hop` strides
// apart.
struct Shape
{
    std::size_t depth;
    std::size_t channels;
    std::size_t hop = 1;

    std::size_t SamplesPerByte() const { return 8 / depth; }
    std::size_t Chunks() const { return SamplesPerByte() * hop; }
};

ChunkMemory MemoryOf(const Shape& shape, std::uint32_t seed, Flush flush = Flush::AtEnd)
{
    return ChunkMemory({{shape.channels, shape.Chunks()}}, seed, flush);
}

void Pack(const Shape& shape, const Road& road, const ChunkMemory& memory)
{
    const auto depth = static_cast<std::int32_t>(shape.depth);
    RunStep({ChunkConvertFacility::Create_Packer(road.sseVersion, depth),
             FormatOf(8, shape.channels),
             {shape.hop, shape.SamplesPerByte() * shape.hop, memory.Stride(0), memory.Stride(0)}},
            memory.Header(0));
}

void Unpack(const Shape& shape, const Road& road, const ChunkMemory& memory)
{
    const auto depth = static_cast<std::int32_t>(shape.depth);
    RunStep({ChunkConvertFacility::Create_Unpacker(road.sseVersion, depth),
             FormatOf(depth, shape.channels, LayoutPlanarPacked),
             {shape.SamplesPerByte() * shape.hop, shape.hop, memory.Stride(0), memory.Stride(0)}},
            memory.Header(0));
}

// The sample of a pixel lies there, counted through the unpacked chunks.
std::size_t SampleAt(const ChunkMemory& memory, const Shape& shape, std::size_t pixel,
                     std::size_t lane)
{
    return memory.SlotStart(0, pixel / 16 * shape.hop, pixel % 16) + lane;
}

unsigned ShiftOf(const Shape& shape, std::size_t pixelInByte)
{
    return static_cast<unsigned>(8 - shape.depth * (pixelInByte + 1));
}

unsigned MaskOf(const Shape& shape)
{
    return shape.depth == 1 ? 1 : 3;
}

struct Lanes
{
    std::size_t first;
    std::size_t end;
};

std::size_t RoundUp(std::size_t value, std::size_t step)
{
    return (value + step - 1) / step * step;
}

// A road packs whole slots, or whole words from the slot's start.
Lanes PackedLanes(const Road& road, const Shape& shape)
{
    return {0, RoundUp(shape.channels, road.isVector ? 16 : 4)};
}

// A road unpacks whole slots, or as many words, but at the slot's end.
Lanes UnpackedLanes(const Road& road, const Shape& shape)
{
    const std::size_t slotBytes = RoundUp(shape.channels, 16);
    return {road.isVector ? 0 : slotBytes - RoundUp(shape.channels, 4), slotBytes};
}

Bytes NaivePack(Bytes bytes, const ChunkMemory& memory, const Shape& shape, Lanes lanes)
{
    const Bytes before = bytes;
    for (std::size_t lane = lanes.first; lane < lanes.end; ++lane)
        for (std::size_t group = 0; group < 16; ++group) {
            unsigned sum = 0;
            for (std::size_t k = 0; k < shape.SamplesPerByte(); ++k) {
                const std::size_t pixel = group * shape.SamplesPerByte() + k;
                sum += (before[SampleAt(memory, shape, pixel, lane)] & MaskOf(shape))
                       << ShiftOf(shape, k);
            }
            bytes[memory.SlotStart(0, 0, group) + lane] = static_cast<unsigned char>(sum);
        }
    return bytes;
}

Bytes NaiveUnpack(Bytes bytes, const ChunkMemory& memory, const Shape& shape, Lanes lanes)
{
    const Bytes before = bytes;
    for (std::size_t lane = lanes.first; lane < lanes.end; ++lane)
        for (std::size_t pixel = 0; pixel < 16 * shape.SamplesPerByte(); ++pixel) {
            const std::size_t group = pixel / shape.SamplesPerByte();
            const unsigned packed = before[memory.SlotStart(0, 0, group) + lane];
            bytes[SampleAt(memory, shape, pixel, lane)] = static_cast<unsigned char>(
                (packed >> ShiftOf(shape, pixel % shape.SamplesPerByte())) & MaskOf(shape));
        }
    return bytes;
}

std::string NameOf(const Road& road, const Shape& shape)
{
    return std::string(road.name) + ", depth " + std::to_string(shape.depth) + ", channels " +
           std::to_string(shape.channels) + ", hop " + std::to_string(shape.hop);
}

void ExpectPacked(const Shape& shape, const Road& road, const ChunkMemory& memory)
{
    SCOPED_TRACE(NameOf(road, shape));
    const Bytes expected = NaivePack(memory.bytes(), memory, shape, PackedLanes(road, shape));
    Pack(shape, road, memory);
    ASSERT_EQ(expected, memory.bytes());
}

void ExpectUnpacked(const Shape& shape, const Road& road, const ChunkMemory& memory)
{
    SCOPED_TRACE(NameOf(road, shape));
    const Bytes expected = NaiveUnpack(memory.bytes(), memory, shape, UnpackedLanes(road, shape));
    Unpack(shape, road, memory);
    ASSERT_EQ(expected, memory.bytes());
}

class NbitStep : public testing::TestWithParam<std::size_t>
{};

TEST_P(NbitStep, PacksAndUnpacksTheLanesOfItsRoadAndLeavesTheRest)
{
    for (std::size_t channels = 1; channels <= 130; ++channels)
        for (const std::size_t hop : {1U, 2U, 3U})
            for (const Road& road : AvailableRoads()) {
                const Shape shape = {GetParam(), channels, hop};
                const auto seed = static_cast<std::uint32_t>(channels * 10 + hop);
                ExpectPacked(shape, road, MemoryOf(shape, seed));
                ExpectUnpacked(shape, road, MemoryOf(shape, seed));
            }
}

TEST_P(NbitStep, StaysAfterTheStartOfItsChunks)
{
    for (const std::size_t channels : {1U, 4U, 13U, 16U, 17U, 33U})
        for (const Road& road : AvailableRoads()) {
            const Shape shape = {GetParam(), channels};
            const ChunkMemory memory = MemoryOf(shape, 3, Flush::AtStart);
            ExpectPacked(shape, road, memory);
            ExpectUnpacked(shape, road, memory);
        }
}

// The strides are such as no real region has.
TEST_P(NbitStep, TellsTheWayBetweenChunksAndTheSlotInItsBlock)
{
    const auto depth = static_cast<std::int32_t>(GetParam());
    const ChunkStepGeometry geometry = {3, 5, 7000, 9000};
    for (const std::size_t channels : {1U, 15U, 16U, 17U, 40U})
        for (const Road& road : AvailableRoads()) {
            SCOPED_TRACE(std::string(road.name) + ", channels " + std::to_string(channels));
            const std::size_t slotBytes = RoundUp(channels, 16);
            const std::uint64_t slot = road.isVector ? slotBytes / 16 : slotBytes;
            alignas(16) std::uint64_t block[2] = {1, 2};

            const auto packer = ChunkConvertFacility::Create_Packer(road.sseVersion, depth);
            const ImageRowFormat bytes = FormatOf(8, channels);
            packer.select(packer, bytes)->GetConvertMethod(packer, bytes, geometry, block);
            EXPECT_EQ(21000 - 16 * slotBytes, block[0]);
            EXPECT_EQ(slot, block[1]);

            const auto unpacker = ChunkConvertFacility::Create_Unpacker(road.sseVersion, depth);
            const ImageRowFormat packed = FormatOf(depth, channels, LayoutPlanarPacked);
            unpacker.select(unpacker, packed)->GetConvertMethod(unpacker, packed, geometry, block);
            EXPECT_EQ(5U * 9000U, block[0]);
            EXPECT_EQ(slot, block[1]);
        }
}

// Every value of a packed byte in every lane, and every value of a sample at every place of its
// byte: 256 values stand in the 16 slots of 16 lanes.
TEST_P(NbitStep, ServesAllByteValues)
{
    for (const Road& road : AvailableRoads()) {
        const Shape shape = {GetParam(), 16};
        SCOPED_TRACE(road.name);
        const ChunkMemory packed = MemoryOf(shape, 1);
        for (std::size_t slot = 0; slot < 16; ++slot)
            for (std::size_t lane = 0; lane < 16; ++lane)
                packed.SetByte(packed.SlotStart(0, 0, slot) + lane,
                               static_cast<unsigned char>(16 * slot + lane));
        ExpectUnpacked(shape, road, packed);

        for (unsigned value = 0; value < 256; ++value) {
            const ChunkMemory samples = MemoryOf(shape, 2);
            for (std::size_t pixel = 0; pixel < 16 * shape.SamplesPerByte(); ++pixel)
                for (std::size_t lane = 0; lane < 16; ++lane)
                    samples.SetByte(SampleAt(samples, shape, pixel, lane),
                                    static_cast<unsigned char>(value + pixel * lane));
            ExpectPacked(shape, road, samples);
        }
    }
}

// The naive steps are those of each road: here the roads are compared.
TEST_P(NbitStep, AgreesOnBothRoadsButForUnpackingASlotThatIsNotNearlyFull)
{
    if (!HasVectorRoad())
        return;
    const Road roads[] = {{"portable", 0, false}, {"vector", 3, true}};
    for (std::size_t channels = 1; channels <= 130; ++channels) {
        const Shape shape = {GetParam(), channels};
        std::vector<Bytes> packed(2);
        std::vector<Bytes> unpacked;
        for (std::size_t road = 0; road < 2; ++road) {
            const ChunkMemory memory = MemoryOf(shape, 11);
            Unpack(shape, roads[road], memory);
            unpacked.push_back(memory.bytes());
            const ChunkMemory samples = MemoryOf(shape, 12);
            Pack(shape, roads[road], samples);
            const Bytes bytes = samples.bytes();
            for (std::size_t slot = 0; slot < 16; ++slot)
                for (std::size_t lane = 0; lane < channels; ++lane)
                    packed[road].push_back(bytes[samples.SlotStart(0, 0, slot) + lane]);
        }
        EXPECT_EQ(packed[0], packed[1]) << channels;
        EXPECT_EQ(RoundUp(channels, 16) - channels <= 3, unpacked[0] == unpacked[1]) << channels;
    }
}

TEST_P(NbitStep, RestoresTheLowestBitsOfEachSampleOnTheVectorRoad)
{
    if (!HasVectorRoad())
        return;
    const Road vector = {"vector", 3, true};
    for (std::size_t channels = 1; channels <= 130; ++channels) {
        const Shape shape = {GetParam(), channels};
        const ChunkMemory memory = MemoryOf(shape, 13);
        const Bytes before = memory.bytes();
        Pack(shape, vector, memory);
        Unpack(shape, vector, memory);
        const Bytes after = memory.bytes();
        for (std::size_t pixel = 0; pixel < 16 * shape.SamplesPerByte(); ++pixel)
            for (std::size_t lane = 0; lane < channels; ++lane) {
                const std::size_t at = SampleAt(memory, shape, pixel, lane);
                ASSERT_EQ(before[at] & MaskOf(shape), after[at]) << channels;
            }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryDepth, NbitStep, testing::Values(1, 2),
                         [](const testing::TestParamInfo<std::size_t>& depth) {
                             return "Depth" + std::to_string(depth.param);
                         });

// The first byte of the packed chunk, from these samples in lane 0.
unsigned PackedByte(std::size_t depth, const Road& road, const Bytes& samples)
{
    const Shape shape = {depth, 1};
    const ChunkMemory memory = MemoryOf(shape, 1);
    for (std::size_t pixel = 0; pixel < samples.size(); ++pixel)
        memory.SetByte(SampleAt(memory, shape, pixel, 0), samples[pixel]);
    Pack(shape, road, memory);
    return memory.bytes()[memory.SlotStart(0, 0, 0)];
}

TEST(Packer, PutsTheFirstPixelIntoTheHighestBits)
{
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(0x80U, PackedByte(1, road, {1, 0, 0, 0, 0, 0, 0, 0}));
        EXPECT_EQ(0x01U, PackedByte(1, road, {0, 0, 0, 0, 0, 0, 0, 1}));
        EXPECT_EQ(0xA3U, PackedByte(1, road, {1, 0, 1, 0, 0, 0, 1, 1}));
        EXPECT_EQ(0xC0U, PackedByte(2, road, {3, 0, 0, 0}));
        EXPECT_EQ(0x03U, PackedByte(2, road, {0, 0, 0, 3}));
        EXPECT_EQ(0x1BU, PackedByte(2, road, {0, 1, 2, 3}));
    }
}

TEST(Packer, TakesTheLowestBitsAndNoThreshold)
{
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(road.name);
        EXPECT_EQ(0x00U, PackedByte(1, road, {2, 2, 254, 128, 4, 8, 16, 0}));
        EXPECT_EQ(0xFFU, PackedByte(1, road, {255, 1, 3, 129, 255, 5, 9, 17}));
        EXPECT_EQ(0xFFU, PackedByte(2, road, {255, 3, 7, 131}));
        EXPECT_EQ(0x00U, PackedByte(2, road, {252, 4, 128, 0}));
    }
}

TEST(Unpacker, TurnsOnesIntoLevelsAndNotIntoTones)
{
    for (const Road& road : AvailableRoads())
        for (const std::size_t depth : {1U, 2U}) {
            const Shape shape = {depth, 16};
            const ChunkMemory memory = MemoryOf(shape, 1);
            for (std::size_t slot = 0; slot < 16; ++slot)
                for (std::size_t lane = 0; lane < 16; ++lane)
                    memory.SetByte(memory.SlotStart(0, 0, slot) + lane, 0xFF);
            Unpack(shape, road, memory);
            const Bytes after = memory.bytes();
            for (std::size_t pixel = 0; pixel < 128 / depth; ++pixel)
                for (std::size_t lane = 0; lane < 16; ++lane)
                    ASSERT_EQ(MaskOf(shape), after[SampleAt(memory, shape, pixel, lane)]);
        }
}

TEST(Unpacker, CoversTheLastFourLanesOfFourChannelsOnThePortableRoad)
{
    const Road portable = {"portable", 0, false};
    for (const std::size_t depth : {1U, 2U}) {
        const Shape shape = {depth, 4};
        const ChunkMemory memory = MemoryOf(shape, 21);
        const Bytes before = memory.bytes();
        Unpack(shape, portable, memory);
        const Bytes after = memory.bytes();
        for (std::size_t pixel = 0; pixel < 128 / depth; ++pixel)
            for (std::size_t lane = 0; lane < 16; ++lane) {
                const std::size_t at = SampleAt(memory, shape, pixel, lane);
                if (lane < 12)
                    ASSERT_EQ(before[at], after[at]) << lane;
                else
                    ASSERT_GE(MaskOf(shape), after[at]) << lane;
            }
    }
}

TEST(PackedRow, NeedsAChunkForEach16ByteColumns)
{
    ImageRowFormat format = FormatOf(1, 1, LayoutPlanarPacked);
    EXPECT_EQ(2U, (CountColumns(format, 129) + 15) / 16);
    EXPECT_EQ(1U, (CountColumns(format, 128) + 15) / 16);
    format.bits = 2;
    EXPECT_EQ(3U, (CountColumns(format, 129) + 15) / 16);
    EXPECT_EQ(2U, (CountColumns(format, 128) + 15) / 16);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
