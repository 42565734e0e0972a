#include "tests/converters/chunk_memory.h"
#include "tests/converters/step_runner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

// A repeat as the portal may place it: its output chunks stand `hop` strides apart.
struct Shape
{
    std::size_t factor;
    std::size_t pixelBytes;
    std::size_t hop = 1;
};

ChunkMemory MemoryOf(const Shape& shape, std::uint32_t seed, Flush flush = Flush::AtEnd)
{
    return ChunkMemory({{shape.pixelBytes, shape.factor * shape.hop}}, seed, flush);
}

StepCall RepeatCall(const Shape& shape, const Road& road, const ChunkMemory& memory)
{
    return {ChunkConvertFacility::Create_PixelRepeat(road.sseVersion,
                                                     static_cast<std::int32_t>(shape.factor)),
            FormatOf(8, shape.pixelBytes),
            {shape.factor * shape.hop, shape.hop, memory.Stride(0), memory.Stride(0)}};
}

// Output slot q is input slot q / factor, pad included.
Bytes NaiveRepeat(Bytes bytes, const ChunkMemory& memory, const Shape& shape)
{
    const Bytes before = bytes;
    for (std::size_t q = 0; q < 16 * shape.factor; ++q)
        for (std::size_t byte = 0; byte < memory.SlotBytes(0); ++byte)
            bytes[memory.SlotStart(0, q / 16 * shape.hop, q % 16) + byte] =
                before[memory.SlotStart(0, 0, q / shape.factor) + byte];
    return bytes;
}

TEST(PixelRepeat, WritesEveryPixelSizeInWholeSlots)
{
    for (std::size_t pixelBytes = 1; pixelBytes <= 130; ++pixelBytes)
        for (const std::size_t factor : {1U, 2U, 4U})
            for (const std::size_t hop : {1U, 2U, 3U})
                for (const Road& road : AvailableRoads()) {
                    const Shape shape = {factor, pixelBytes, hop};
                    SCOPED_TRACE(std::string(road.name) + ", factor " + std::to_string(factor) +
                                 ", pixel bytes " + std::to_string(pixelBytes) + ", hop " +
                                 std::to_string(hop));
                    const Flush flush = pixelBytes % 2 != 0 ? Flush::AtEnd : Flush::AtStart;
                    const ChunkMemory memory =
                        MemoryOf(shape, static_cast<std::uint32_t>(pixelBytes), flush);
                    const Bytes expected = NaiveRepeat(memory.bytes(), memory, shape);
                    RunStep(RepeatCall(shape, road, memory), memory.Header(0));
                    ASSERT_EQ(expected, memory.bytes());
                }
}

TEST(PixelRepeat, TakesWideSamplesAsWholeSlotsToo)
{
    for (const std::int32_t bits : {1, 10, 16})
        for (const std::size_t channels : {1U, 8U, 9U, 20U})
            for (const std::size_t factor : {2U, 4U})
                for (const Road& road : AvailableRoads()) {
                    const Shape shape = {factor, (bits > 8 ? 2 : 1) * channels};
                    const ChunkMemory memory = MemoryOf(shape, 5);
                    const Bytes expected = NaiveRepeat(memory.bytes(), memory, shape);
                    StepCall call = RepeatCall(shape, road, memory);
                    call.input = FormatOf(bits, channels);
                    RunStep(call, memory.Header(0));
                    ASSERT_EQ(expected, memory.bytes()) << road.name;
                }
}

TEST(PixelRepeat, RepeatsAlikeForANegativeFactor)
{
    for (const std::size_t factor : {2U, 4U})
        for (const std::size_t pixelBytes : {4U, 20U})
            for (const Road& road : AvailableRoads()) {
                const Shape shape = {factor, pixelBytes};
                const ChunkMemory memory = MemoryOf(shape, 6);
                const Bytes expected = NaiveRepeat(memory.bytes(), memory, shape);
                StepCall call = RepeatCall(shape, road, memory);
                call.facility.repeat = -call.facility.repeat;
                RunStep(call, memory.Header(0));
                ASSERT_EQ(expected, memory.bytes()) << road.name;
            }
}

// Marks the input slots by their number and answers which one an output slot holds.
unsigned MarkIn(const Shape& shape, const Road& road, std::size_t chunk, std::size_t slot)
{
    const ChunkMemory memory = MemoryOf(shape, 1);
    for (std::size_t input = 0; input < 16; ++input)
        memory.SetByte(memory.SlotStart(0, 0, input), static_cast<unsigned char>(input));
    RunStep(RepeatCall(shape, road, memory), memory.Header(0));
    return memory.bytes()[memory.SlotStart(0, chunk, slot)];
}

TEST(PixelRepeat, PutsNamedPixelsWhereTheyBelong)
{
    for (const Road& road : AvailableRoads())
        for (const std::size_t pixelBytes : {3U, 33U}) {
            SCOPED_TRACE(road.name);
            const Shape twice = {2, pixelBytes};
            EXPECT_EQ(0U, MarkIn(twice, road, 0, 0));
            EXPECT_EQ(0U, MarkIn(twice, road, 0, 1));
            EXPECT_EQ(7U, MarkIn(twice, road, 0, 14));
            EXPECT_EQ(7U, MarkIn(twice, road, 0, 15));
            EXPECT_EQ(8U, MarkIn(twice, road, 1, 0));
            EXPECT_EQ(15U, MarkIn(twice, road, 1, 15));
            const Shape fourTimes = {4, pixelBytes};
            for (const std::size_t slot : {12U, 13U, 14U, 15U})
                EXPECT_EQ(3U, MarkIn(fourTimes, road, 0, slot));
            EXPECT_EQ(4U, MarkIn(fourTimes, road, 1, 0));
            EXPECT_EQ(15U, MarkIn(fourTimes, road, 3, 15));
        }
}

TEST(PixelRepeat, TellsStrideAndUnitsInItsBlock)
{
    for (const Road& road : AvailableRoads())
        for (const std::size_t factor : {2U, 4U})
            for (const std::size_t channels : {1U, 16U, 17U, 40U}) {
                SCOPED_TRACE(road.name);
                const auto facility = ChunkConvertFacility::Create_PixelRepeat(
                    road.sseVersion, static_cast<std::int32_t>(factor));
                const ImageRowFormat input = FormatOf(8, channels);
                alignas(16) std::uint64_t block[2] = {1, 2};
                facility.select(facility, input)
                    ->GetConvertMethod(facility, input, {factor, 3, 1111, 2222}, block);
                EXPECT_EQ(3U * 2222U, block[0]);
                EXPECT_EQ((channels + 15) / 16, block[1]);
            }
}

TEST(PixelRepeat, LeavesChunkAndBlockAloneForFactorOne)
{
    for (const Road& road : AvailableRoads())
        for (const std::size_t channels : {1U, 17U}) {
            const Shape shape = {1, channels};
            const ChunkMemory memory = MemoryOf(shape, 9);
            const Bytes before = memory.bytes();
            const StepCall call = RepeatCall(shape, road, memory);
            alignas(16) std::uint64_t block[2] = {0x1234, 0x5678};
            const ConvertMethod method =
                call.facility.select(call.facility, call.input)
                    ->GetConvertMethod(call.facility, call.input, call.geometry, block);
            method(memory.Header(0), block);
            EXPECT_EQ(0x1234U, block[0]) << road.name;
            EXPECT_EQ(0x5678U, block[1]) << road.name;
            EXPECT_EQ(before, memory.bytes()) << road.name;
        }
}

TEST(PixelRepeat, ServesOneUnitByItsMemberForAnyUnitsToo)
{
    if (!HasVectorRoad())
        return;
    for (const std::size_t factor : {2U, 4U}) {
        for (const std::size_t pixelBytes : {1U, 5U, 16U}) {
            const Shape shape = {factor, pixelBytes, 2};
            const ChunkMemory memory = MemoryOf(shape, 14);
            const Bytes expected = NaiveRepeat(memory.bytes(), memory, shape);
            const StepCall call = RepeatCall(shape, {"vector", 3, true}, memory);
            RunDescriptor(*call.facility.select(call.facility, FormatOf(8, 17)), call,
                          memory.Header(0));
            EXPECT_EQ(expected, memory.bytes()) << pixelBytes;
        }
    }
}
} // namespace
} // namespace zvk::Pelkraft::TestSupport
