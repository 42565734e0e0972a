#include "tests/converters/chunk_memory.h"
#include "tests/converters/step_runner.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

std::uint16_t NaiveWiden(unsigned sample)
{
    return static_cast<std::uint16_t>((sample << 8) | sample);
}

unsigned char NaiveNarrow(std::uint64_t sample)
{
    const std::uint64_t high = (sample * 0xFF01) >> 16;
    return static_cast<unsigned char>((high + 127) >> 8);
}

std::uint16_t WordAt(const Bytes& bytes, std::size_t position)
{
    std::uint16_t word;
    std::memcpy(&word, bytes.data() + position, sizeof word);
    return word;
}

void PutWord(Bytes& bytes, std::size_t position, std::uint16_t word)
{
    std::memcpy(bytes.data() + position, &word, sizeof word);
}

enum class Direction
{
    Widen,
    Narrow,
};

std::size_t FromBytes(Direction direction)
{
    return direction == Direction::Widen ? 1 : 2;
}

std::size_t ToBytes(Direction direction)
{
    return direction == Direction::Widen ? 2 : 1;
}

StepCall DepthCall(Direction direction, const Road& road, std::size_t channels)
{
    const auto facility = direction == Direction::Widen
                              ? ChunkConvertFacility::Create_Convert8to16(road.sseVersion)
                              : ChunkConvertFacility::Create_Convert16to8(road.sseVersion);
    return {facility, FormatOf(direction == Direction::Widen ? 8 : 16, channels), {1, 1, 0, 0}};
}

struct Place
{
    std::size_t from;
    std::size_t to;
};

// After the step the samples of one chunk, and nothing else in the memory, are new.
Bytes NaiveDepthStep(Bytes bytes, const ChunkMemory& memory, Direction direction, Place chunk,
                     std::size_t channels)
{
    const Bytes before = bytes;
    for (std::size_t slot = 0; slot < 16; ++slot)
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const std::size_t from =
                memory.SlotStart(0, chunk.from, slot) + channel * FromBytes(direction);
            const std::size_t to =
                memory.SlotStart(1, chunk.to, slot) + channel * ToBytes(direction);
            if (direction == Direction::Widen)
                PutWord(bytes, to, NaiveWiden(before[from]));
            else
                bytes[to] = NaiveNarrow(WordAt(before, from));
        }
    return bytes;
}

// Equal everywhere, but for the output's pad on the vector road, which has no promised value.
void ExpectSame(const Bytes& expected, Bytes actual, const ChunkMemory& memory, const Road& road,
                std::size_t toChunk, std::size_t outputPixelBytes)
{
    if (road.isVector)
        for (std::size_t slot = 0; slot < 16; ++slot)
            for (std::size_t byte = outputPixelBytes; byte < memory.SlotBytes(1); ++byte) {
                const std::size_t pad = memory.SlotStart(1, toChunk, slot) + byte;
                actual[pad] = expected[pad];
            }
    EXPECT_EQ(expected, actual);
}

class DepthStep : public testing::TestWithParam<Direction>
{};

TEST_P(DepthStep, ConvertsTheSamplesOfEveryChannelCountAndLeavesTheRest)
{
    const Direction direction = GetParam();
    for (std::size_t channels = 1; channels <= 130; ++channels)
        for (const Road& road : AvailableRoads())
            for (const RegionOrder order : {RegionOrder::Forward, RegionOrder::Backward})
                for (const Flush flush : {Flush::AtEnd, Flush::AtStart}) {
                    SCOPED_TRACE(std::string(road.name) + ", channels " + std::to_string(channels));
                    const ChunkMemory memory(
                        {{channels * FromBytes(direction)}, {channels * ToBytes(direction)}},
                        static_cast<std::uint32_t>(channels), flush, order);
                    const Bytes expected =
                        NaiveDepthStep(memory.bytes(), memory, direction, {0, 0}, channels);
                    RunStep(DepthCall(direction, road, channels), memory.Header(0));
                    ExpectSame(expected, memory.bytes(), memory, road, 0,
                               channels * ToBytes(direction));
                }
}

TEST_P(DepthStep, FollowsTheLinkFromAnyChunkOfItsRegion)
{
    const Direction direction = GetParam();
    for (const std::size_t channels : {1U, 4U, 8U, 9U, 12U, 17U, 24U, 33U})
        for (const Road& road : AvailableRoads())
            for (std::size_t turn = 0; turn < 3; ++turn) {
                SCOPED_TRACE(std::string(road.name) + ", channels " + std::to_string(channels));
                const ChunkMemory memory({{channels * FromBytes(direction), 6, 1, 2},
                                          {channels * ToBytes(direction), 12, 4, 1}},
                                         99);
                const Place chunk = {2 * turn, 4 * turn};
                const Bytes expected =
                    NaiveDepthStep(memory.bytes(), memory, direction, chunk, channels);
                RunStep(DepthCall(direction, road, channels), memory.Header(0, chunk.from));
                ExpectSame(expected, memory.bytes(), memory, road, chunk.to,
                           channels * ToBytes(direction));
            }
}

INSTANTIATE_TEST_SUITE_P(BothWays, DepthStep, testing::Values(Direction::Widen, Direction::Narrow),
                         [](const testing::TestParamInfo<Direction>& way) {
                             return way.param == Direction::Widen ? "Widen" : "Narrow";
                         });

// The channel counts that take the one-unit, the even and the odd method of the vector road.
constexpr std::size_t methodChannels[] = {8, 16, 24};

// All values in order through one road and one method.
std::vector<unsigned> ConvertAll(Direction direction, const Road& road, std::size_t channels,
                                 unsigned valueCount)
{
    std::vector<unsigned> results;
    const ChunkMemory memory({{channels * FromBytes(direction)}, {channels * ToBytes(direction)}},
                             7);
    while (results.size() < valueCount) {
        const auto first = static_cast<unsigned>(results.size());
        for (unsigned sample = 0; sample < 16 * channels; ++sample) {
            const std::size_t at = memory.SlotStart(0, 0, sample / channels) +
                                   sample % channels * FromBytes(direction);
            const unsigned value = (first + sample) % valueCount;
            memory.SetByte(at, static_cast<unsigned char>(value & 255));
            if (direction == Direction::Narrow)
                memory.SetByte(at + 1, static_cast<unsigned char>(value >> 8));
        }
        RunStep(DepthCall(direction, road, channels), memory.Header(0));
        const Bytes bytes = memory.bytes();
        for (unsigned sample = 0; sample < 16 * channels; ++sample) {
            const std::size_t at =
                memory.SlotStart(1, 0, sample / channels) + sample % channels * ToBytes(direction);
            results.push_back(direction == Direction::Widen ? WordAt(bytes, at) : bytes[at]);
        }
    }
    results.resize(valueCount);
    return results;
}

TEST(Widening, MultipliesAllByteValuesBy257)
{
    for (const Road& road : AvailableRoads())
        for (const std::size_t channels : methodChannels) {
            SCOPED_TRACE(road.name);
            const std::vector<unsigned> results = ConvertAll(Direction::Widen, road, channels, 256);
            for (unsigned value = 0; value < 256; ++value)
                ASSERT_EQ(value * 257, results[value]);
        }
}

TEST(Narrowing, CutsAllWordValuesAtTheStatedBorders)
{
    for (const Road& road : AvailableRoads())
        for (const std::size_t channels : methodChannels) {
            SCOPED_TRACE(road.name);
            const std::vector<unsigned> results =
                ConvertAll(Direction::Narrow, road, channels, 65536);
            for (unsigned value = 0; value < 65536; ++value)
                ASSERT_EQ(NaiveNarrow(value), results[value]) << value;
            // The same said by intervals: 0 to 129, then 257 inputs each, then 65408 and above.
            unsigned value = 0;
            for (; value <= 129; ++value)
                ASSERT_EQ(0U, results[value]);
            for (unsigned level = 1; level <= 254; ++level)
                for (; value <= 257 * level + 129; ++value)
                    ASSERT_EQ(level, results[value]);
            ASSERT_EQ(65408U, value);
            for (; value < 65536; ++value)
                ASSERT_EQ(255U, results[value]);
        }
}

TEST(Narrowing, IsOneBelowTheNearestAt255InputsAlone)
{
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(road.name);
        const std::vector<unsigned> results = ConvertAll(Direction::Narrow, road, 8, 65536);
        unsigned lower = 0;
        for (unsigned value = 0; value < 65536; ++value) {
            const unsigned nearest = (value + 128) / 257;
            const bool isLower =
                value >= 129 && (value - 129) % 257 == 0 && value <= 257 * 254 + 129;
            ASSERT_EQ(nearest - (isLower ? 1 : 0), results[value]) << value;
            lower += isLower ? 1 : 0;
        }
        EXPECT_EQ(255U, lower);
    }
}

TEST(Narrowing, GivesTheNamedValues)
{
    for (const Road& road : AvailableRoads()) {
        SCOPED_TRACE(road.name);
        const std::vector<unsigned> results = ConvertAll(Direction::Narrow, road, 16, 65536);
        EXPECT_EQ(0U, results[129]);
        EXPECT_EQ(1U, results[130]);
        EXPECT_EQ(1U, results[386]);
        EXPECT_EQ(2U, results[387]);
        EXPECT_EQ(127U, results[32768]);
        EXPECT_EQ(128U, results[32769]);
        EXPECT_EQ(254U, results[65407]);
        EXPECT_EQ(255U, results[65408]);
        EXPECT_EQ(255U, results[65535]);
        for (std::size_t byte = 0; byte < 256; ++byte)
            EXPECT_EQ(byte, results[byte * 257]);
    }
}

ConvertMethod VectorMethod(Direction direction, std::size_t channels, std::int32_t bits)
{
    StepCall call = DepthCall(direction, {"vector", 3, true}, channels);
    call.input.bits = bits;
    return call.facility.select(call.facility, call.input)
        ->GetConvertMethod(call.facility, call.input, call.geometry, nullptr);
}

TEST(DepthMethods, AreChosenByTheUnitsOfTheWideSlot)
{
    if (!HasVectorRoad())
        return;
    for (const Direction direction : {Direction::Widen, Direction::Narrow}) {
        const std::int32_t bits = direction == Direction::Widen ? 8 : 16;
        const ConvertMethod oneUnit = VectorMethod(direction, 8, bits);
        const ConvertMethod even = VectorMethod(direction, 9, bits);
        const ConvertMethod odd = VectorMethod(direction, 17, bits);
        EXPECT_NE(oneUnit, even);
        EXPECT_NE(oneUnit, odd);
        EXPECT_NE(even, odd);
        for (std::size_t channels = 1; channels <= 130; ++channels) {
            const std::size_t units = (2 * channels + 15) / 16;
            const ConvertMethod expected = units == 1 ? oneUnit : units % 2 != 0 ? odd : even;
            EXPECT_EQ(expected, VectorMethod(direction, channels, bits)) << channels;
        }
    }
}

TEST(Widening, IsChosenByTheChannelsAlone)
{
    if (!HasVectorRoad())
        return;
    for (std::size_t channels = 1; channels <= 40; ++channels)
        for (const std::int32_t bits : {-8, 0, 1, 10, 16, 32})
            EXPECT_EQ(VectorMethod(Direction::Widen, channels, 8),
                      VectorMethod(Direction::Widen, channels, bits))
                << channels << " channels of " << bits << " bits";
}

TEST(Narrowing, StoresTheBytesOfAUnitWithoutAPartnerTwice)
{
    if (!HasVectorRoad())
        return;
    // Slots of one unit, and of three.
    for (const std::size_t channels : {1U, 5U, 8U, 17U, 24U}) {
        const ChunkMemory memory({{2 * channels}, {channels}}, 6);
        RunStep(DepthCall(Direction::Narrow, {"vector", 3, true}, channels), memory.Header(0));
        const Bytes bytes = memory.bytes();
        for (std::size_t slot = 0; slot < 16; ++slot) {
            const auto last =
                bytes.begin() + static_cast<std::ptrdiff_t>(memory.SlotStart(1, 0, slot) +
                                                            memory.SlotBytes(1) - 16);
            EXPECT_EQ(Bytes(last, last + 8), Bytes(last + 8, last + 16)) << channels;
        }
    }
}

TEST(Narrowing, DoesNothingForPixelsOfOneByteOnThePortableRoad)
{
    const ChunkMemory memory({{1}, {1}}, 8);
    const Bytes before = memory.bytes();
    RunStep(DepthCall(Direction::Narrow, {"portable", 0, false}, 1), memory.Header(0));
    EXPECT_EQ(before, memory.bytes());
}

TEST(Narrowing, IgnoresAnOddLastByteOnThePortableRoad)
{
    // Slots of 17 bytes hold 8 samples; their stride follows from the 16 whole bytes.
    const ChunkMemory memory({{16}, {8}}, 5);
    const Road portable = {"portable", 0, false};
    const Bytes expected = NaiveDepthStep(memory.bytes(), memory, Direction::Narrow, {0, 0}, 8);
    const std::uint64_t oddPixelBytes = 17;
    std::memcpy(memory.Header(0) + 32, &oddPixelBytes, sizeof oddPixelBytes);
    RunStep(DepthCall(Direction::Narrow, portable, 8), memory.Header(0));
    const std::uint64_t pixelBytes = 16;
    std::memcpy(memory.Header(0) + 32, &pixelBytes, sizeof pixelBytes);
    EXPECT_EQ(expected, memory.bytes());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
