#include "tests/portal/fake_chain.h"
#include "tests/portal/portal_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr bool own = true;
constexpr std::int32_t levels[] = {0, 3};

// Step and bytes from the buffer's first chunk.
using Place = std::pair<std::size_t, std::ptrdiff_t>;

std::vector<Place> PlacesOf(const FakeChain& chain)
{
    std::vector<Place> places;
    for (const StepRun& run : chain.GetRuns()) {
        places.emplace_back(run.step,
                            reinterpret_cast<const unsigned char*>(run.chunk) -
                                reinterpret_cast<const unsigned char*>(chain.GetRuns()[0].chunk));
    }
    return places;
}

ImageRowFormat OneChannel(std::int64_t width)
{
    return MakeFormat(8, LayoutInterleaved, 1, width);
}

// Pixel i of the row belongs to its chunk of number i / 16, which is counted from 1 on.
Bytes NumberedChunks(std::size_t width)
{
    Bytes row;
    for (std::size_t i = 0; i != width; ++i)
        row.push_back(static_cast<unsigned char>(i / 16 + 1));
    return row;
}

struct Sight
{
    std::size_t step;
    Bytes pixels;
    std::ptrdiff_t savedPixels;

    bool operator==(const Sight&) const = default;
};

void PrintTo(const Sight& sight, std::ostream* out)
{
    *out << "step " << sight.step << " saved " << sight.savedPixels << " pixels";
    for (const unsigned char pixel : sight.pixels)
        *out << ' ' << static_cast<int>(pixel);
}

// Notes what each run finds in its first chunk, and how much of the row has been saved by then.
std::vector<Sight> SightsOf(FakeChain& chain, std::size_t sourceWidth, std::size_t width)
{
    const Bytes source = NumberedChunks(sourceWidth);
    const GuardedBuffer row(width, Flush::AtEnd, 0xEE);
    std::vector<Sight> sights;
    chain.onRun = [&](const StepRun& run) {
        const Bytes now = row.bytes();
        sights.push_back(
            {run.step, PixelsOf(run.chunk),
             std::count_if(now.begin(), now.end(), [](auto pixel) { return pixel != 0xEE; })});
    };
    const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
    ConversionPortal({0, source.data(), row.data(),
                      OneChannel(static_cast<std::int64_t>(sourceWidth)),
                      OneChannel(static_cast<std::int64_t>(width))},
                     records.size(), records.data());
    return sights;
}

TEST(ConversionPortal, AsksEachStepForItsMethodOnceTheChainIsSized)
{
    const std::vector<std::string> expected = {"select 0",  "metrics 0", "format 0", "select 1",
                                               "metrics 1", "format 1",  "select 0", "method 0",
                                               "select 1",  "method 1",  "run 0",    "run 1"};
    for (const bool withGaps : {false, true}) {
        const FakeChain chain({{1, 1}, {1, 1, own}});
        RunPortal({0, OneChannel(16), OneChannel(16)}, Bytes(16), chain.MakeRecords(withGaps));
        EXPECT_EQ(expected, chain.GetCalls());
    }
}

TEST(ConversionPortal, HandsEachStepTheFormatOfTheOneBefore)
{
    const FakeChain chain({{1, 1, own, 0, 16, 0}, {1, 1, own, 0, 0, 4}, {1, 1}});
    ImageRowFormat source = OneChannel(16);
    source.reversed = true;
    RunPortal({0, source, MakeFormat(16, LayoutInterleaved, 4, 16)}, Bytes(16),
              chain.MakeRecords());
    EXPECT_EQ(8, chain.GetInput(0).bits);
    EXPECT_EQ(1, chain.GetInput(0).channels);
    EXPECT_TRUE(chain.GetInput(0).reversed);
    EXPECT_EQ(16, chain.GetInput(1).bits);
    EXPECT_FALSE(chain.GetInput(1).reversed);
    EXPECT_EQ(4, chain.GetInput(2).channels);
}

TEST(ConversionPortal, HandsEachStepItsGeometry)
{
    const FakeChain chain({{8, 1}, {1, 1, own, 0, 0, 17}, {1, 4}, {1, 1, own, 0, 16, 0}});
    RunPortal({0, OneChannel(128), MakeFormat(16, LayoutInterleaved, 17, 64)}, Bytes(128),
              chain.MakeRecords());
    const ChunkStepGeometry expected[] = {
        {1, 8, 320, 320}, {8, 4, 320, 576}, {4, 1, 576, 576}, {1, 1, 576, 832}};
    for (std::size_t i = 0; i != 4; ++i) {
        SCOPED_TRACE(i);
        const ChunkStepGeometry& geometry = chain.GetGeometry(i);
        EXPECT_EQ(expected[i].expansion, geometry.expansion);
        EXPECT_EQ(expected[i].reduction, geometry.reduction);
        EXPECT_EQ(expected[i].inputChunkStride, geometry.inputChunkStride);
        EXPECT_EQ(expected[i].outputChunkStride, geometry.outputChunkStride);
    }
}

TEST(ConversionPortal, RunsEachStepOnTheFirstChunksOfItsGroups)
{
    const FakeChain chain({{8, 1}, {1, 1, own, 0, 0, 17}, {1, 4}, {1, 1, own, 0, 16, 0}});
    RunPortal({0, OneChannel(256), MakeFormat(16, LayoutInterleaved, 17, 128)}, Bytes(256),
              chain.MakeRecords());
    const std::vector<Place> batch = {{0, 0},    {1, 0},    {2, 2560}, {3, 2560},
                                      {3, 3136}, {3, 3712}, {3, 4288}};
    std::vector<Place> expected = batch;
    expected.insert(expected.end(), batch.begin(), batch.end());
    EXPECT_EQ(expected, PlacesOf(chain));
}

TEST(ConversionPortal, RunsEachStepOverTheWholeTrailingBatch)
{
    const FakeChain chain({{1, 2}, {4, 1}});
    RunPortal({0, OneChannel(3), OneChannel(2)}, Bytes(3), chain.MakeRecords());
    EXPECT_EQ((std::vector<Place>{{0, 0}, {0, 640}, {1, 0}}), PlacesOf(chain));
}

TEST(ConversionPortal, HandsEachRunItsParameterBlock)
{
    const FakeChain chain({{1, 1, own, 17}, {1, 2, false, 0}, {1, 1, false, 16}});
    RunPortal({0, OneChannel(40), OneChannel(80)}, Bytes(40), chain.MakeRecords());
    EXPECT_NE(nullptr, chain.GetParameters(0));
    EXPECT_EQ(nullptr, chain.GetParameters(1));
    EXPECT_NE(nullptr, chain.GetParameters(2));
    for (const std::size_t step : {0U, 2U})
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(chain.GetParameters(step)) % 16);
    ASSERT_EQ(12U, chain.GetRuns().size());
    for (const StepRun& run : chain.GetRuns())
        EXPECT_EQ(chain.GetParameters(run.step), run.parameters);
}

// Both sides of a batch: two chunks in, one chunk out.
TEST(ConversionPortal, LoadsABatchThenConvertsItThenSavesIt)
{
    FakeChain chain({{1, 2}, {4, 1}});
    const std::vector<Sight> expected = {
        {0, Bytes(16, 1), 0},
        {0, Bytes(16, 2), 0},
        {1, Bytes(16, 1), 0},
        {0, Bytes(16, 3), 16},
        {0, Bytes(16, 4), 16},
        {1, Bytes(16, 3), 16},
        // The trailing batch: one chunk, and nothing where the second would be.
        {0, Bytes(16, 5), 32},
        {0, Bytes(16, 0), 32},
        {1, Bytes(16, 5), 32}};
    EXPECT_EQ(expected, SightsOf(chain, 80, 40));
}

TEST(ConversionPortal, LoadsTheLastPixelsWithZerosBehindThem)
{
    FakeChain chain({{4, 1}});
    Bytes second(16, 6);
    std::fill(second.begin() + 5, second.end(), static_cast<unsigned char>(0));
    std::vector<Bytes> chunks;
    const Bytes source = NumberedChunks(85);
    Bytes row(22, 0xEE);
    chain.onRun = [&](const StepRun& run) {
        for (std::size_t i = 0; i != 4; ++i)
            chunks.push_back(PixelsOf(reinterpret_cast<const ChunkHeader*>(
                reinterpret_cast<const unsigned char*>(run.chunk) + i * 320)));
    };
    const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
    ConversionPortal({0, source.data(), row.data(), OneChannel(85), OneChannel(22)}, records.size(),
                     records.data());
    const std::vector<Bytes> expected = {Bytes(16, 1), Bytes(16, 2), Bytes(16, 3), Bytes(16, 4),
                                         Bytes(16, 5), second,       Bytes(16, 0), Bytes(16, 0)};
    EXPECT_EQ(expected, chunks);
}

TEST(ConversionPortal, TakesTheShorterSidesBatches)
{
    // The source has two batches of one chunk, the destination one of two.
    FakeChain chain({{1, 2}});
    const std::vector<Sight> expected = {{0, Bytes(16, 1), 0}, {0, Bytes(16, 2), 32}};
    EXPECT_EQ(expected, SightsOf(chain, 32, 63));
}

TEST(ConversionPortal, RunsATrailingBatchIfOneSideAloneHasPixelsLeft)
{
    FakeChain loading({{1, 1}});
    Bytes lastPixel(16, 0);
    lastPixel[0] = 2;
    EXPECT_EQ((std::vector<Sight>{{0, Bytes(16, 1), 0}, {0, lastPixel, 16}}),
              SightsOf(loading, 17, 16));

    const FakeChain saving({{1, 1}});
    const Bytes row =
        RunPortal({0, OneChannel(16), OneChannel(17)}, Bytes(16, 1), saving.MakeRecords());
    Bytes expected(17, 1);
    expected[16] = 0;
    EXPECT_EQ(expected, row);
    EXPECT_EQ(2U, saving.GetRuns().size());
}

TEST(ConversionPortal, RunsTheTrailingBatchOnceForARowShorterThanAChunk)
{
    for (std::size_t width = 1; width != 16; ++width) {
        FakeChain chain({{1, 1}});
        Bytes pixels(16, 0);
        std::fill_n(pixels.begin(), width, static_cast<unsigned char>(1));
        EXPECT_EQ((std::vector<Sight>{{0, pixels, 0}}), SightsOf(chain, width, width));
    }
}

TEST(ConversionPortal, NeitherLoadsNorSavesWithoutPixels)
{
    for (const std::int32_t sseVersion : levels) {
        const FakeChain chain({{1, 2}, {1, 1, own}});
        ImageRowFormat source = OneChannel(100);
        ImageRowFormat destination = OneChannel(100);
        source.activeWidth = 0;
        destination.activeWidth = 0;
        const std::vector<ChunkConvertFacility> records = chain.MakeRecords();
        ConversionPortal({sseVersion, nullptr, nullptr, source, destination}, records.size(),
                         records.data());
        EXPECT_TRUE(chain.GetRuns().empty());
        ConversionPortal({sseVersion, nullptr, nullptr, source, destination}, 0, nullptr);
    }
}

TEST(ConversionPortal, RefusesMoreThanFourStepsBeforeItAsksOne)
{
    const FakeChain chain({{1, 1}, {1, 1}, {1, 1}, {1, 1}, {1, 1}});
    const PortalCase portalCase{3, OneChannel(16), OneChannel(16)};
    EXPECT_EQ("zvk::Pelkraft::ConversionPortal unsupported conversion count",
              FailureOf(portalCase, Bytes(16), chain.MakeRecords()));
    EXPECT_EQ("zvk::Pelkraft::ConversionPortal unsupported conversion count",
              FailureOf(portalCase, Bytes(16), chain.MakeRecords(true)));
    EXPECT_TRUE(chain.GetCalls().empty());
}

TEST(ConversionPortal, PassesOverEmptyRecords)
{
    const FakeChain chain({{1, 1}, {1, 1}, {1, 1}, {1, 1}});
    EXPECT_EQ("",
              FailureOf({0, OneChannel(16), OneChannel(16)}, Bytes(16), chain.MakeRecords(true)));
    EXPECT_EQ(4U, chain.GetRuns().size());
}

TEST(ConversionPortal, HandsOnTheTextsOfUnevenSteps)
{
    const PortalCase portalCase{0, OneChannel(16), OneChannel(16)};
    const FakeChain source({{2, 3}});
    const Bytes row(16);
    EXPECT_EQ("Equidistant distribution of conversion source failed",
              FailureOf(portalCase, row, source.MakeRecords()));
    EXPECT_TRUE(source.GetRuns().empty());
    const FakeChain results({{3, 2}});
    EXPECT_EQ("Equidistant distribution of conversion results failed",
              FailureOf(portalCase, row, results.MakeRecords()));
}

// A planar row of more than two bytes per sample has no loader; the steps are sized before that.
TEST(ConversionPortal, SizesTheChainBeforeItLooksAtTheRows)
{
    const FakeChain chain({{1, 1}});
    PortalCase portalCase{0, OneChannel(16), OneChannel(16)};
    portalCase.source.bits = 24;
    portalCase.source.layout = LayoutPlanar;
    EXPECT_EQ("ChunkLoadFacilityInternal::SelectDescriptorX86 Unsupported format",
              FailureOf(portalCase, Bytes(48), chain.MakeRecords()));
    const std::vector<std::string> expected = {"select 0", "metrics 0", "format 0"};
    EXPECT_EQ(expected, chain.GetCalls());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
