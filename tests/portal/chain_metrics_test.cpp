#include "portal/chain_metrics.h"

#include "tests/portal/fake_chain.h"
#include "tests/support/thrown_text.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* unevenSource = "Equidistant distribution of conversion source failed";
constexpr const char* unevenResults = "Equidistant distribution of conversion results failed";

// Expansion, reduction and multiples.
using Hops = std::array<std::uint64_t, 3>;
// Chunks, pixel bytes, step in and step out.
using Region = std::array<std::uint64_t, 4>;
// Chunks and step of the loads, then of the saves.
using Ratios = std::array<std::uint64_t, 4>;

struct WorkedChain
{
    const char* name;
    std::vector<FakeStep> steps;
    Ratios ratios;
    std::vector<Hops> hops;
    std::vector<Region> regions;
};

void PrintTo(const WorkedChain& chain, std::ostream* out)
{
    *out << chain.name;
}

constexpr bool own = true;

// Each worked by hand for a source of three channels of 8 bits.
const std::vector<WorkedChain>& WorkedChains()
{
    static const std::vector<WorkedChain> chains = {
        {"InPlace", {{1, 1}}, {1, 1, 1, 1}, {{1, 1, 1}}, {{1, 3, 1, 1}}},
        {"OwnRegion",
         {{1, 1, own, 0, 16, 0}},
         {1, 1, 1, 1},
         {{1, 1, 1}},
         {{1, 3, 1, 1}, {1, 6, 1, 1}}},
        {"OneToTwo", {{1, 2}}, {1, 2, 2, 1}, {{2, 1, 1}}, {{2, 3, 2, 1}}},
        {"OneToFour", {{1, 4}}, {1, 4, 4, 1}, {{4, 1, 1}}, {{4, 3, 4, 1}}},
        {"OneToEight", {{1, 8}}, {1, 8, 8, 1}, {{8, 1, 1}}, {{8, 3, 8, 1}}},
        {"TwoToOne", {{2, 1}}, {2, 1, 1, 2}, {{1, 2, 1}}, {{2, 3, 1, 2}}},
        {"FourToOne", {{4, 1}}, {4, 1, 1, 4}, {{1, 4, 1}}, {{4, 3, 1, 4}}},
        {"EightToOne", {{8, 1}}, {8, 1, 1, 8}, {{1, 8, 1}}, {{8, 3, 1, 8}}},
        {"TwoToFour", {{2, 4}}, {2, 2, 4, 1}, {{2, 1, 1}}, {{4, 3, 2, 1}}},
        {"FourToTwo", {{4, 2}}, {4, 1, 2, 2}, {{1, 2, 1}}, {{4, 3, 1, 2}}},
        // A region of its own asks for no even spread.
        {"OwnRegionTwoToThree",
         {{2, 3, own}},
         {2, 1, 3, 1},
         {{1, 1, 1}},
         {{2, 3, 1, 1}, {3, 3, 1, 1}}},
        {"OwnRegionThreeToTwo",
         {{3, 2, own}},
         {3, 1, 2, 1},
         {{1, 1, 1}},
         {{3, 3, 1, 1}, {2, 3, 1, 1}}},
        {"GroupsOfTwoThenThree",
         {{2, 2}, {3, 3}},
         {6, 1, 6, 1},
         {{1, 1, 3}, {1, 1, 2}},
         {{6, 3, 1, 1}}},
        {"TwoToOneThenThreeToOne",
         {{2, 1}, {3, 1}},
         {6, 1, 1, 6},
         {{1, 2, 3}, {2, 6, 1}},
         {{6, 3, 1, 6}}},
        // A remap after a packer reads every eighth chunk.
        {"EightToOneThenOwnRegion",
         {{8, 1}, {1, 1, own, 0, 0, 17}},
         {8, 1, 1, 1},
         {{1, 8, 1}, {8, 1, 1}},
         {{8, 3, 1, 8}, {1, 17, 1, 1}}},
        // A depth change ahead of a repeat writes every fourth chunk.
        {"OwnRegionThenOneToFour",
         {{1, 1, own, 0, 16, 0}, {1, 4}},
         {1, 1, 4, 1},
         {{1, 4, 1}, {4, 1, 1}},
         {{1, 3, 1, 1}, {4, 6, 4, 1}}},
        {"FourToOneThenOneToEight",
         {{4, 1}, {1, 8}},
         {4, 2, 8, 1},
         {{2, 8, 1}, {8, 1, 1}},
         {{8, 3, 2, 1}}},
        {"EightToOneThenOneToTwo",
         {{8, 1}, {1, 2}},
         {8, 1, 2, 4},
         {{1, 8, 1}, {8, 4, 1}},
         {{8, 3, 1, 4}}},
        {"OneToFourThenEightToOne",
         {{1, 4}, {8, 1}},
         {2, 4, 1, 8},
         {{4, 1, 2}, {1, 8, 1}},
         {{8, 3, 4, 8}}},
        {"OneToEightThenFourToOne",
         {{1, 8}, {4, 1}},
         {1, 8, 2, 4},
         {{8, 1, 1}, {1, 4, 2}},
         {{8, 3, 8, 4}}},
        // Packed samples repeated between unpacking and packing.
        {"OneToEightOneToTwoEightToOne",
         {{1, 8}, {1, 2}, {8, 1}},
         {1, 16, 2, 8},
         {{16, 2, 1}, {2, 1, 8}, {1, 8, 2}},
         {{16, 3, 16, 8}}},
        {"ThreeRegions",
         {{1, 1, own, 0, 0, 20}, {1, 1, own, 0, 16, 0}},
         {1, 1, 1, 1},
         {{1, 1, 1}, {1, 1, 1}},
         {{1, 3, 1, 1}, {1, 20, 1, 1}, {1, 40, 1, 1}}},
        // 16 to 8 bits, mirror, repeat by two, pack to one bit.
        {"OwnInPlaceOneToTwoEightToOne",
         {{1, 1, own, 0, 8, 1}, {1, 1}, {1, 2}, {8, 1}},
         {4, 1, 1, 8},
         {{1, 2, 4}, {2, 2, 4}, {2, 1, 4}, {1, 8, 1}},
         {{4, 3, 1, 1}, {8, 1, 2, 8}}},
        {"OwnOneToTwoEightToOneOwn",
         {{1, 1, own}, {1, 2}, {8, 1}, {1, 1, own, 0, 0, 5}},
         {4, 1, 1, 1},
         {{1, 2, 4}, {2, 1, 4}, {1, 8, 1}, {8, 1, 1}},
         {{4, 3, 1, 1}, {8, 3, 2, 8}, {1, 5, 1, 1}}},
        // Remap, unpack, widen, repeat by two.
        {"OwnOneToEightOwnOneToTwo",
         {{1, 1, own, 0, 0, 4}, {1, 8}, {1, 1, own, 0, 16, 0}, {1, 2}},
         {1, 1, 16, 1},
         {{1, 8, 1}, {8, 1, 1}, {1, 2, 8}, {2, 1, 8}},
         {{1, 3, 1, 1}, {8, 4, 8, 1}, {16, 8, 2, 1}}},
        {"EightToOneOwnOneToFourOwn",
         {{8, 1}, {1, 1, own}, {1, 4}, {1, 1, own, 0, 16, 0}},
         {8, 1, 4, 1},
         {{1, 8, 1}, {8, 4, 1}, {4, 1, 1}, {1, 1, 4}},
         {{8, 3, 1, 8}, {4, 3, 4, 1}, {4, 6, 1, 1}}},
        {"FourExpansions",
         {{1, 2}, {1, 2}, {1, 2}, {1, 2}},
         {1, 16, 16, 1},
         {{16, 8, 1}, {8, 4, 2}, {4, 2, 4}, {2, 1, 8}},
         {{16, 3, 16, 1}}},
        {"FourReductions",
         {{2, 1}, {2, 1}, {2, 1}, {2, 1}},
         {16, 1, 1, 16},
         {{1, 2, 8}, {2, 4, 4}, {4, 8, 2}, {8, 16, 1}},
         {{16, 3, 1, 16}}},
        {"FourOwnRegions",
         {{1, 1, own}, {1, 1, own}, {1, 1, own}, {1, 1, own, 0, 16, 2}},
         {1, 1, 1, 1},
         {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}},
         {{1, 3, 1, 1}, {1, 3, 1, 1}, {1, 3, 1, 1}, {1, 3, 1, 1}, {1, 4, 1, 1}}},
        // Twelve is the least that six and four divide.
        {"OneToSixThenFourToOne",
         {{1, 6}, {4, 1}},
         {2, 6, 3, 4},
         {{6, 1, 2}, {1, 4, 3}},
         {{12, 3, 6, 4}}},
        {"SixToOneFourToOneNineToNine",
         {{6, 1}, {4, 1}, {9, 9}},
         {216, 1, 9, 24},
         {{1, 6, 36}, {6, 24, 9}, {24, 24, 1}},
         {{216, 3, 1, 24}}},
    };
    return chains;
}

ImageRowFormat ThreeChannels()
{
    ImageRowFormat format;
    format.bits = 8;
    format.layout = LayoutInterleaved;
    format.channels = 3;
    return format;
}

std::string FailureOf(const std::vector<FakeStep>& steps)
{
    return TextOf([&] { MeasureChain(steps, 3); });
}

class WorkedChainMetrics : public testing::TestWithParam<WorkedChain>
{};

TEST_P(WorkedChainMetrics, CountLoadsAndSavesOfABatch)
{
    const ChainMetrics metrics = MeasureChain(GetParam().steps, 3);
    const ChainRatio& load = metrics.GetLoadRatio();
    const ChainRatio& save = metrics.GetSaveRatio();
    EXPECT_EQ(GetParam().ratios, (Ratios{load.chunks, load.step, save.chunks, save.step}));
}

TEST_P(WorkedChainMetrics, ReconcileTheHopsOfTheSteps)
{
    const ChainMetrics metrics = MeasureChain(GetParam().steps, 3);
    ASSERT_EQ(GetParam().hops.size(), metrics.GetStepCount());
    for (std::size_t i = 0; i != metrics.GetStepCount(); ++i) {
        SCOPED_TRACE(i);
        const ChainStep& step = metrics.GetStep(i);
        EXPECT_EQ(GetParam().hops[i], (Hops{step.expansion, step.reduction, step.multiples}));
    }
}

TEST_P(WorkedChainMetrics, LayOutTheRegions)
{
    const ChainMetrics metrics = MeasureChain(GetParam().steps, 3);
    ASSERT_EQ(GetParam().regions.size(), metrics.GetRegionCount());
    for (std::size_t i = 0; i != metrics.GetRegionCount(); ++i) {
        SCOPED_TRACE(i);
        const ChainRegion& region = metrics.GetRegion(i);
        EXPECT_EQ(GetParam().regions[i],
                  (Region{region.chunkCount, region.pixelBytes, region.inStep, region.outStep}));
    }
}

INSTANTIATE_TEST_SUITE_P(ByHand, WorkedChainMetrics, testing::ValuesIn(WorkedChains()),
                         [](const auto& worked) { return std::string(worked.param.name); });

TEST(ChainMetrics, StoreWhatEachStepSaysAndTheFormatThatItMeets)
{
    const ChainMetrics metrics =
        MeasureChain({{1, 1, own, 24, 16, 7}, {4, 2, false, 5, 2, 9}, {1, 3}}, 3);
    ASSERT_EQ(3U, metrics.GetStepCount());
    EXPECT_EQ(8, metrics.GetStep(0).format.bits);
    EXPECT_EQ(3, metrics.GetStep(0).format.channels);
    EXPECT_EQ(16, metrics.GetStep(1).format.bits);
    EXPECT_EQ(7, metrics.GetStep(1).format.channels);
    EXPECT_EQ(LayoutInterleaved, metrics.GetStep(1).format.layout);
    EXPECT_EQ(2, metrics.GetStep(2).format.bits);
    EXPECT_EQ(9, metrics.GetStep(2).format.channels);

    EXPECT_EQ(24U, metrics.GetStep(0).ratio.parameterBytes);
    EXPECT_TRUE(metrics.GetStep(0).ratio.ownRegion);
    EXPECT_EQ(4U, metrics.GetStep(1).ratio.inputChunks);
    EXPECT_EQ(2U, metrics.GetStep(1).ratio.outputChunks);
    EXPECT_EQ(5U, metrics.GetStep(1).ratio.parameterBytes);
    EXPECT_FALSE(metrics.GetStep(1).ratio.ownRegion);
    EXPECT_EQ(0U, metrics.GetStep(2).ratio.parameterBytes);
}

TEST(ChainMetrics, HandOnWhetherTheSourceIsReversed)
{
    const FakeChain chain({{1, 1}, {1, 1}});
    const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
    ImageRowFormat source = ThreeChannels();
    source.layout = LayoutPlanar;
    source.reversed = true;
    const ChainMetrics metrics(ActiveOf(records), source);
    EXPECT_TRUE(metrics.GetStep(0).format.reversed);
    EXPECT_EQ(LayoutPlanar, metrics.GetStep(0).format.layout);
    EXPECT_FALSE(metrics.GetStep(1).format.reversed);
}

TEST(ChainMetrics, RoundSamplesUpToWholeBytesInARegion)
{
    const FakeChain chain({{1, 1, own, 0, 10, 0}, {1, 1, own, 0, 1, 0}});
    const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
    ImageRowFormat source = ThreeChannels();
    source.bits = 2;
    const ChainMetrics metrics(ActiveOf(records), source);
    EXPECT_EQ(3U, metrics.GetRegion(0).pixelBytes);
    EXPECT_EQ(6U, metrics.GetRegion(1).pixelBytes);
    EXPECT_EQ(3U, metrics.GetRegion(2).pixelBytes);
}

TEST(ChainMetrics, AskEachStepInOrder)
{
    const FakeChain chain({{1, 1}, {1, 2}, {2, 1}});
    const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
    const ChainMetrics metrics(ActiveOf(records), ThreeChannels());
    const std::vector<std::string> expected = {"select 0", "metrics 0", "format 0",
                                               "select 1", "metrics 1", "format 1",
                                               "select 2", "metrics 2", "format 2"};
    EXPECT_EQ(expected, chain.GetCalls());
}

TEST(ChainMetrics, RefuseResultsThatAreSpreadUnevenly)
{
    EXPECT_EQ(unevenResults, FailureOf({{3, 2}}));
    EXPECT_EQ(unevenResults, FailureOf({{8, 3}}));
    EXPECT_EQ(unevenResults, FailureOf({{1, 2}, {1, 1, own}, {5, 4}}));
    EXPECT_EQ(unevenResults, FailureOf({{1, 1}, {1, 1}, {1, 1}, {7, 2}}));
}

TEST(ChainMetrics, RefuseSourcesThatAreSpreadUnevenly)
{
    EXPECT_EQ(unevenSource, FailureOf({{2, 3}}));
    EXPECT_EQ(unevenSource, FailureOf({{3, 8}}));
    EXPECT_EQ(unevenSource, FailureOf({{4, 1}, {2, 5}}));
}

TEST(ChainMetrics, NameTheFirstUnevenStep)
{
    EXPECT_EQ(unevenSource, FailureOf({{2, 3}, {3, 2}}));
    EXPECT_EQ(unevenResults, FailureOf({{3, 2}, {2, 3}}));
}

TEST(ChainMetrics, AskNoStepBehindAnUnevenOne)
{
    const FakeChain chain({{1, 1}, {3, 2}, {1, 1}});
    const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
    EXPECT_THROW(ChainMetrics(ActiveOf(records), ThreeChannels()), const char*);
    const std::vector<std::string> expected = {"select 0", "metrics 0", "format 0", "select 1",
                                               "metrics 1"};
    EXPECT_EQ(expected, chain.GetCalls());
}

TEST(TrailMetrics, StageTwoSingleChunks)
{
    const ChainMetrics metrics = ChainMetrics::Trail(5, 34);
    EXPECT_EQ(1U, metrics.GetLoadRatio().chunks);
    EXPECT_EQ(1U, metrics.GetLoadRatio().step);
    EXPECT_EQ(1U, metrics.GetSaveRatio().chunks);
    EXPECT_EQ(1U, metrics.GetSaveRatio().step);
    ASSERT_EQ(2U, metrics.GetRegionCount());
    const std::uint64_t pixelBytes[] = {5, 34};
    for (const std::size_t i : {0U, 1U}) {
        EXPECT_EQ(1U, metrics.GetRegion(i).chunkCount);
        EXPECT_EQ(pixelBytes[i], metrics.GetRegion(i).pixelBytes);
        EXPECT_EQ(1U, metrics.GetRegion(i).inStep);
        EXPECT_EQ(1U, metrics.GetRegion(i).outStep);
    }
    ASSERT_EQ(1U, metrics.GetStepCount());
    const ChainStep& step = metrics.GetStep(0);
    EXPECT_EQ(1U, step.ratio.inputChunks);
    EXPECT_EQ(1U, step.ratio.outputChunks);
    EXPECT_EQ(0U, step.ratio.parameterBytes);
    EXPECT_TRUE(step.ratio.ownRegion);
    EXPECT_EQ(1U, step.expansion);
    EXPECT_EQ(1U, step.reduction);
    EXPECT_EQ(1U, step.multiples);
}

TEST(SingleChunkMetrics, HaveOneRegionAndNoStep)
{
    const ChainMetrics metrics = ChainMetrics::SingleChunk(33);
    ASSERT_EQ(1U, metrics.GetRegionCount());
    EXPECT_EQ(1U, metrics.GetRegion(0).chunkCount);
    EXPECT_EQ(33U, metrics.GetRegion(0).pixelBytes);
    EXPECT_EQ(0U, metrics.GetStepCount());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
