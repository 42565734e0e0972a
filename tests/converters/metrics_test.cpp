#include "tests/converters/chunk_memory.h"
#include "tests/converters/step_runner.h"
#include "tests/support/thrown_text.h"
#include "tests/support/virtual_slots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

struct Numbers
{
    std::uint64_t inputChunks;
    std::uint64_t outputChunks;
    std::uint64_t parameterBytes;
    bool ownRegion;
};

void ExpectMetrics(const Numbers& expected, const ChunkConvertFacility& facility,
                   const ImageRowFormat& input)
{
    // Whatever was there must be written over.
    ChunkConvertMetrics metrics = {77, 78, 79, !expected.ownRegion};
    const ChunkConvertMetrics& answer =
        facility.select(facility, input)->GetMetrics(metrics, facility, input);
    EXPECT_EQ(&metrics, &answer);
    EXPECT_EQ(expected.inputChunks, metrics.inputChunks);
    EXPECT_EQ(expected.outputChunks, metrics.outputChunks);
    EXPECT_EQ(expected.parameterBytes, metrics.parameterBytes);
    EXPECT_EQ(expected.ownRegion, metrics.ownRegion);
}

TEST(ConvertDescriptor, HasItsOperationsInTheirOrder)
{
    EXPECT_EQ(0, SlotOf(&IChunkConvertDescriptor::GetMetrics));
    EXPECT_EQ(1, SlotOf(&IChunkConvertDescriptor::GetOutputFormat));
    EXPECT_EQ(2, SlotOf(&IChunkConvertDescriptor::GetConvertMethod));
}

void ExpectOutput(const ImageRowFormat& expected, const ChunkConvertFacility& facility,
                  const ImageRowFormat& input)
{
    ImageRowFormat output;
    output.bits = 99;
    output.layout = 99;
    output.channels = 99;
    output.reversed = !expected.reversed;
    output.width = 555;
    output.activeWidth = 444;
    const ImageRowFormat& answer =
        facility.select(facility, input)->GetOutputFormat(output, facility, input);
    EXPECT_EQ(&output, &answer);
    EXPECT_EQ(expected.bits, output.bits);
    EXPECT_EQ(expected.layout, output.layout);
    EXPECT_EQ(expected.channels, output.channels);
    EXPECT_EQ(expected.reversed, output.reversed);
    EXPECT_EQ(555, output.width);
    EXPECT_EQ(444, output.activeWidth);
}

struct ConstantStep
{
    ChunkConvertFacility facility;
    Numbers metrics;
    std::int32_t inputBits;
    // 0 stands for an output in the input's format.
    std::int32_t outputBits;
};

std::vector<ConstantStep> ConstantSteps(std::int32_t level)
{
    using Facility = ChunkConvertFacility;
    std::vector<ConstantStep> steps = {
        {Facility::Create_Convert8to16(level), {1, 1, 0, true}, 8, 16},
        {Facility::Create_Convert16to8(level), {1, 1, 0, true}, 16, 8},
        {Facility::Create_Packer(level, 1), {8, 1, 16, false}, 8, 8},
        {Facility::Create_Packer(level, 2), {4, 1, 16, false}, 8, 8},
        {Facility::Create_Unpacker(level, 1), {1, 8, 16, false}, 1, 8},
        {Facility::Create_Unpacker(level, 2), {1, 4, 16, false}, 2, 8}};
    for (const std::int32_t bits : {1, 8, 10, 16}) {
        steps.push_back({Facility::Create_Reverse(level), {1, 1, 0, false}, bits, 0});
        for (const std::int32_t factor : {1, 2, 4, -1, -2, -4})
            steps.push_back({Facility::Create_PixelRepeat(level, factor),
                             {1, static_cast<std::uint64_t>(std::abs(factor)), 16, false},
                             bits,
                             0});
    }
    return steps;
}

TEST(ConvertStep, AnswersAsTheTableSays)
{
    for (const Road& road : AvailableRoads())
        for (const ConstantStep& step : ConstantSteps(road.sseVersion))
            for (const std::size_t channels : {1U, 8U, 9U, 17U, 40U})
                for (const std::int32_t layout :
                     {LayoutInterleaved, LayoutPlanar, LayoutPlanarPacked})
                    for (const bool reversed : {false, true}) {
                        SCOPED_TRACE(road.name);
                        ImageRowFormat input = FormatOf(step.inputBits, channels, layout);
                        input.reversed = reversed;
                        input.width = 1234;
                        input.activeWidth = 1200;
                        ExpectMetrics(step.metrics, step.facility, input);
                        ExpectOutput(step.outputBits != 0 ? FormatOf(step.outputBits, channels)
                                                          : input,
                                     step.facility, input);
                    }
}

TEST(ConvertStep, DoesNothingWithoutChannels)
{
    for (const Road& road : AvailableRoads())
        for (const ConstantStep& step : ConstantSteps(road.sseVersion)) {
            const auto& [inputs, outputs, parameterBytes, ownRegion] = step.metrics;
            const auto chunks = static_cast<std::size_t>(std::max(inputs, outputs));
            const ChunkMemory memory({{0, chunks}, {0, chunks}}, 1);
            const Bytes before = memory.bytes();
            RunStep({step.facility,
                     FormatOf(step.inputBits, 0),
                     {chunks / inputs, chunks / outputs, memory.Stride(0), memory.Stride(1)}},
                    memory.Header(0));
            EXPECT_EQ(before, memory.bytes()) << road.name;
        }
}

TEST(ConvertMetrics, HoldAnEntryPerChannelForPortableRemaps)
{
    const std::vector<std::int32_t> table(130, 0);
    for (const std::int32_t bits : {1, 8, 10, 16})
        for (const std::uint64_t channels : {0U, 1U, 4U, 17U, 33U, 130U})
            ExpectMetrics({1, 1, 8 * channels, true},
                          ChunkConvertFacility::Create_Remap(0, channels, table.data()),
                          FormatOf(bits, 20));
}

TEST(ConvertMetrics, HoldAMaskPerPairOfUnitsForVectorRemaps)
{
    if (!HasVectorRoad())
        return;
    struct Case
    {
        std::int32_t bits;
        std::size_t channels;
        std::uint64_t remapChannels;
        std::uint64_t parameterBytes;
    };
    // Output units times input slot bytes; 16 and 64 where the slots are one or two units each.
    const Case cases[] = {{8, 4, 4, 16},     {8, 16, 1, 16},    {8, 17, 32, 64}, {8, 20, 10, 32},
                          {8, 10, 20, 32},   {8, 4, 40, 48},    {8, 40, 4, 48},  {8, 40, 40, 144},
                          {8, 130, 33, 432}, {16, 8, 8, 16},    {16, 9, 9, 64},  {16, 9, 8, 32},
                          {16, 20, 20, 144}, {10, 20, 20, 144}, {8, 4, 0, 0},    {1, 33, 1, 48}};
    const std::vector<std::int32_t> table(130, 0);
    for (const Case& one : cases)
        ExpectMetrics({1, 1, one.parameterBytes, true},
                      ChunkConvertFacility::Create_Remap(3, one.remapChannels, table.data()),
                      FormatOf(one.bits, one.channels));
}

TEST(ConvertOutputFormat, HasTheChannelsOfTheTableForRemaps)
{
    const std::vector<std::int32_t> table(40, 0);
    for (const Road& road : AvailableRoads())
        for (const std::int32_t bits : {1, 2, 8, 10, 16})
            for (const std::size_t channels : {0U, 1U, 5U, 17U, 40U}) {
                SCOPED_TRACE(road.name);
                ImageRowFormat input = FormatOf(bits, 7, LayoutPlanar);
                input.reversed = true;
                ExpectOutput(
                    FormatOf(bits, channels),
                    ChunkConvertFacility::Create_Remap(road.sseVersion, channels, table.data()),
                    input);
            }
}

TEST(ConvertOutputFormat, RefusesDepthsThatNoRowHasForEveryRemap)
{
    const std::vector<std::int32_t> table(40, 0);
    std::vector<std::int32_t> unsupported = {-8, 0, 17, 24, 32, 33, 40};
    for (std::int32_t bits = 3; bits < 16; ++bits)
        if (bits != 8 && bits != 10)
            unsupported.push_back(bits);
    const auto refusal = [&](std::int32_t level, std::size_t channels, std::int32_t bits) {
        const auto facility = ChunkConvertFacility::Create_Remap(level, channels, table.data());
        const auto* member = facility.select(facility, FormatOf(channels > 4 ? 8 : 16, channels));
        return TextOf([&] {
            ImageRowFormat output;
            member->GetOutputFormat(output, facility, FormatOf(bits, channels));
        });
    };
    // Slots of one, of two and of three units, and both sizes of a sample.
    for (const Road& road : AvailableRoads())
        for (const std::size_t channels : {4U, 17U, 40U})
            for (const std::int32_t bits : unsupported)
                EXPECT_EQ("zvk::Pelkraft::ImageRowFormat unsupported bit depth",
                          refusal(road.sseVersion, channels, bits))
                    << bits;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
