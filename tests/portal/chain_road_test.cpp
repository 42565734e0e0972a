#include "tests/portal/fake_chain.h"
#include "tests/portal/portal_run.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Facility = ChunkConvertFacility;

constexpr std::int32_t levels[] = {0, 3};
// Several steps are made alike but for their level.
template <typename MakeStep>
void ExpectStepEverywhere(const Bytes& expected, const PortalCase& portalCase, const Bytes& source,
                          MakeStep makeStep)
{
    ExpectEverywhere(expected, portalCase, source,
                     [=](std::int32_t sseVersion) { return Records{makeStep(sseVersion)}; });
}

PortalCase Reversed(const ImageRowFormat& format)
{
    PortalCase portalCase{0, format, format};
    portalCase.source.reversed = true;
    return portalCase;
}

Facility ReverseStep(std::int32_t sseVersion)
{
    return Facility::Create_Reverse(sseVersion);
}

TEST(ChainRoad, RepeatsFivePixelsFourTimes)
{
    const Bytes expected = {1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5};
    ExpectStepEverywhere(
        expected,
        {0, MakeFormat(8, LayoutInterleaved, 1, 5), MakeFormat(8, LayoutInterleaved, 1, 20)},
        {1, 2, 3, 4, 5},
        [](std::int32_t sseVersion) { return Facility::Create_PixelRepeat(sseVersion, 4); });
}

TEST(ChainRoad, EndsInsideTheLastRepeat)
{
    PortalCase portalCase{0, MakeFormat(8, LayoutPlanar, 2, 5),
                          MakeFormat(8, LayoutInterleaved, 2, 11)};
    portalCase.source.activeWidth = 3;
    ExpectStepEverywhere({1, 6, 1, 6, 1, 6, 1, 6, 2, 7, 2, 7, 2, 7, 2, 7, 3, 8, 3, 8, 3, 8},
                         portalCase, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, [](std::int32_t sseVersion) {
                             return Facility::Create_PixelRepeat(sseVersion, 4);
                         });
}

// Two chunks of the source would take part, but the destination has no room for the second.
TEST(ChainRoad, ReadsNoMoreOfAWideSourceThanTheLastBatchHolds)
{
    Bytes source(20);
    std::iota(source.begin(), source.end(), static_cast<unsigned char>(1));
    ExpectStepEverywhere(
        {1, 1, 2}, {0, MakeFormat(8, LayoutInterleaved, 1, 20), MakeFormat(8, LayoutPlanar, 1, 3)},
        source,
        [](std::int32_t sseVersion) { return Facility::Create_PixelRepeat(sseVersion, 2); });
}

TEST(ChainRoad, ClearsTheBitsBehindTheLastPackedPixel)
{
    ExpectStepEverywhere(
        {0xFF, 0xC0},
        {0, MakeFormat(8, LayoutInterleaved, 1, 10), MakeFormat(1, LayoutPlanarPacked, 1, 10)},
        Bytes(10, 1),
        [](std::int32_t sseVersion) { return Facility::Create_Packer(sseVersion, 1); });
}

// The mask goes by the pixels that move, and the byte after theirs stays.
TEST(ChainRoad, MasksByTheActiveWidth)
{
    PortalCase portalCase{0, MakeFormat(8, LayoutInterleaved, 1, 11),
                          MakeFormat(1, LayoutPlanarPacked, 1, 29)};
    portalCase.destination.activeWidth = 11;
    ExpectStepEverywhere(
        {0xFF, 0xE0, 0xEE, 0xEE}, portalCase, Bytes(11, 1),
        [](std::int32_t sseVersion) { return Facility::Create_Packer(sseVersion, 1); });
}

TEST(ChainRoad, MirrorsAPartialInterleavedChunk)
{
    ExpectStepEverywhere({13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3},
                         Reversed(MakeFormat(8, LayoutInterleaved, 3, 5)),
                         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}, ReverseStep);
}

TEST(ChainRoad, MirrorsAPartialPlanarChunk)
{
    ExpectStepEverywhere({3, 2, 1, 6, 5, 4}, Reversed(MakeFormat(8, LayoutPlanar, 2, 3)),
                         {1, 2, 3, 4, 5, 6}, ReverseStep);
    ExpectStepEverywhere({5, 6, 3, 4, 1, 2}, Reversed(MakeFormat(16, LayoutPlanar, 1, 3)),
                         {1, 2, 3, 4, 5, 6}, ReverseStep);
}

TEST(ChainRoad, MirrorsWholeChunksAndTheRest)
{
    for (std::size_t width = 1; width != 70; ++width) {
        Bytes source;
        for (std::size_t i = 0; i != width; ++i)
            source.push_back(static_cast<unsigned char>(i));
        ExpectStepEverywhere(
            Bytes(source.rbegin(), source.rend()),
            Reversed(MakeFormat(8, LayoutInterleaved, 1, static_cast<std::int64_t>(width))), source,
            ReverseStep);
    }
}

TEST(ChainRoad, MirrorsPackedRowsThatEndInsideAByte)
{
    // 10 of 1 bit: 1100000001, then 6 bits that belong to no pixel.
    ExpectStepEverywhere({0x80, 0xC0}, Reversed(MakeFormat(1, LayoutPlanarPacked, 1, 10)),
                         {0xC0, 0x7F}, ReverseStep);
    // 5 of 2 bits: 0 1 2 3 1.
    ExpectStepEverywhere({0x79, 0x00}, Reversed(MakeFormat(2, LayoutPlanarPacked, 1, 5)),
                         {0x1B, 0x7F}, ReverseStep);
    // Two planes of 3 pixels: 110 and 001.
    ExpectStepEverywhere({0x60, 0x80}, Reversed(MakeFormat(1, LayoutPlanarPacked, 2, 3)),
                         {0xDF, 0x3F}, ReverseStep);
}

TEST(ChainRoad, MirrorsTheEndOfALongerPackedRow)
{
    PortalCase portalCase = Reversed(MakeFormat(1, LayoutPlanarPacked, 1, 12));
    portalCase.destination = MakeFormat(1, LayoutPlanarPacked, 1, 3);
    portalCase.source.activeWidth = 3;
    // 1010 1100 0110: the last three are 110.
    ExpectStepEverywhere({0x60}, portalCase, {0xAC, 0x60}, ReverseStep);
}

TEST(ChainRoad, ReadsTheMapNoMoreOnceTheChainIsBuilt)
{
    for (const std::int32_t sseVersion : levels) {
        std::vector<std::int32_t> map = {2, 0, -1};
        FakeChain chain({{1, 1}});
        chain.onRun = [&](const StepRun&) { map = {1, 1, 1}; };
        Records records = chain.MakeRecords();
        records.push_back(Facility::Create_Remap(sseVersion, map.size(), map.data()));
        Bytes source(120);
        std::iota(source.begin(), source.end(), static_cast<unsigned char>(1));
        Bytes expected;
        for (std::size_t i = 0; i != 120; i += 3)
            expected.insert(expected.end(), {source[i + 2], source[i], 0});
        const ImageRowFormat format = MakeFormat(8, LayoutInterleaved, 3, 40);
        EXPECT_EQ(expected, RunPortal({sseVersion, format, format}, source, records));
    }
}

// Answers with the slots of the first of two chunks of a reversed row once it is loaded. The
// portable loader writes pixels only, so that staged bytes can still be seen.
Bytes LoadedSlots(std::int32_t layout, std::size_t gap)
{
    FakeChain chain({{1, 1}});
    Bytes slots;
    chain.onRun = [&](const StepRun& run) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(run.chunk) + 64;
        if (slots.empty())
            slots.assign(bytes, bytes + 256);
    };
    Bytes source;
    for (int i = 1; i <= 32; ++i)
        source.push_back(static_cast<unsigned char>(i));
    RunPortal(Reversed(MakeFormat(8, layout, 1, 32)), source, chain.MakeRecords(),
              {Flush::AtStart, gap});
    return slots;
}

Bytes LastPixelsInSlots()
{
    Bytes slots(256);
    for (std::size_t i = 0; i != 16; ++i)
        slots[16 * i] = static_cast<unsigned char>(17 + i);
    return slots;
}

TEST(ChainRoad, StagesUnalignedChunksOfAReversedInterleavedRow)
{
    Bytes expected = LastPixelsInSlots();
    for (std::size_t i = 1; i != 16; ++i)
        expected[240 + i] = static_cast<unsigned char>(17 + i);
    for (std::size_t gap = 1; gap != 16; ++gap)
        EXPECT_EQ(expected, LoadedSlots(LayoutInterleaved, gap)) << gap;
}

TEST(ChainRoad, LoadsAlignedChunksOfAReversedInterleavedRowWhereTheyAre)
{
    EXPECT_EQ(LastPixelsInSlots(), LoadedSlots(LayoutInterleaved, 0));
    EXPECT_EQ(LastPixelsInSlots(), LoadedSlots(LayoutInterleaved, 16));
}

TEST(ChainRoad, LoadsReversedPlanesWhereTheyAre)
{
    for (std::size_t gap = 0; gap != 16; ++gap)
        EXPECT_EQ(LastPixelsInSlots(), LoadedSlots(LayoutPlanar, gap)) << gap;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
