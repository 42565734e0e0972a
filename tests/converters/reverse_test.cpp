#include "tests/converters/chunk_memory.h"
#include "tests/converters/step_runner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

StepCall ReverseCall(const Road& road, std::size_t channels, std::int32_t bits = 8)
{
    return {ChunkConvertFacility::Create_Reverse(road.sseVersion),
            FormatOf(bits, channels),
            {1, 1, 0, 0}};
}

// Slot i is what slot 15 - i was, pad included.
Bytes NaiveReverse(Bytes bytes, const ChunkMemory& memory, std::size_t chunk)
{
    const Bytes before = bytes;
    for (std::size_t slot = 0; slot < 16; ++slot)
        for (std::size_t byte = 0; byte < memory.SlotBytes(0); ++byte)
            bytes[memory.SlotStart(0, chunk, slot) + byte] =
                before[memory.SlotStart(0, chunk, 15 - slot) + byte];
    return bytes;
}

TEST(Reverse, MirrorsTheSlotsOfEveryPixelSize)
{
    for (std::size_t channels = 1; channels <= 130; ++channels)
        for (const Road& road : AvailableRoads())
            for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                SCOPED_TRACE(std::string(road.name) + ", channels " + std::to_string(channels));
                const ChunkMemory memory({{channels}}, static_cast<std::uint32_t>(channels), flush);
                const Bytes expected = NaiveReverse(memory.bytes(), memory, 0);
                RunStep(ReverseCall(road, channels), memory.Header(0));
                ASSERT_EQ(expected, memory.bytes());
            }
}

TEST(Reverse, MirrorsOneChunkAmongOthers)
{
    for (const std::size_t channels : {4U, 16U, 17U, 40U})
        for (const Road& road : AvailableRoads())
            for (std::size_t chunk = 0; chunk < 3; ++chunk) {
                const ChunkMemory memory({{channels, 3}}, 17);
                const Bytes expected = NaiveReverse(memory.bytes(), memory, chunk);
                RunStep(ReverseCall(road, channels), memory.Header(0, chunk));
                ASSERT_EQ(expected, memory.bytes()) << road.name;
            }
}

TEST(Reverse, TakesSamplesOfAnyDepthAsBytes)
{
    for (const std::int32_t bits : {1, 2, 10, 16})
        for (const std::size_t channels : {1U, 8U, 9U, 16U, 17U, 20U})
            for (const Road& road : AvailableRoads()) {
                const ChunkMemory memory({{(bits > 8 ? 2 : 1) * channels}}, 18);
                const Bytes expected = NaiveReverse(memory.bytes(), memory, 0);
                RunStep(ReverseCall(road, channels, bits), memory.Header(0));
                ASSERT_EQ(expected, memory.bytes()) << road.name;
            }
}

TEST(Reverse, GivesTheChunkBackWhenDoneTwice)
{
    for (const std::size_t channels : {1U, 16U, 17U, 50U})
        for (const Road& road : AvailableRoads()) {
            const ChunkMemory memory({{channels}}, 19);
            const Bytes before = memory.bytes();
            RunStep(ReverseCall(road, channels), memory.Header(0));
            EXPECT_NE(before, memory.bytes());
            RunStep(ReverseCall(road, channels), memory.Header(0));
            EXPECT_EQ(before, memory.bytes()) << road.name;
        }
}

TEST(Reverse, ServesOneUnitByItsMethodForAnyUnitsToo)
{
    if (!HasVectorRoad())
        return;
    const auto facility = ChunkConvertFacility::Create_Reverse(3);
    const ImageRowFormat twoUnits = FormatOf(8, 17);
    const ConvertMethod method = facility.select(facility, twoUnits)
                                     ->GetConvertMethod(facility, twoUnits, {1, 1, 0, 0}, nullptr);
    for (const std::size_t channels : {1U, 16U, 40U}) {
        const ChunkMemory memory({{channels}}, 21);
        const Bytes expected = NaiveReverse(memory.bytes(), memory, 0);
        method(memory.Header(0), nullptr);
        EXPECT_EQ(expected, memory.bytes()) << channels;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
