#include "plan/conversion_checks.h"
#include "plan/plan.h"
#include "tests/direct/levels.h"
#include "tests/support/chain_row.h"
#include "tests/support/conversion_choices.h"
#include "tests/support/conversion_run.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

// The direct road against the chain and against the naive reference, byte for byte, at every
// level that the processor has, on buffers of exactly the rows' size with a forbidden page after
// or before them. A push takes a sample with a fixed seed, PELKRAFT_TEST_CASES says how many for
// each level; PELKRAFT_TEST_FULL=1 takes the whole grid, PELKRAFT_TEST_LEVEL=7 that level alone.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr unsigned seed = 20261122;

std::size_t CountSampledCases()
{
    const char* cases = std::getenv("PELKRAFT_TEST_CASES");
    return cases != nullptr ? std::strtoul(cases, nullptr, 10) : 8000;
}

// By value: the list may be one that was made for this call.
template <typename List>
auto PickFrom(const List& list, std::mt19937& engine)
{
    return list[engine() % std::size(list)];
}

// Also those around the blocks of every level, and rows of more than one tile.
std::vector<int> WidthsOfBlocks()
{
    std::vector<int> widths = Widths();
    for (const int block : {16, 32, 64, 128, 512, 1024, 2048, 4096})
        for (const int off : {-1, 0, 1, 9})
            widths.push_back(block + off);
    return widths;
}

std::vector<int> ChannelCountsOfKernels()
{
    std::vector<int> counts = ChannelCounts();
    for (const int count : {21, 23, 25, 29, 34, 39, 63, 128, 129, 260})
        counts.push_back(count);
    return counts;
}

// Maps at random, with repeated channels, empty entries and channels that nobody wants.
NaiveOperation RandomMap(int channels, std::mt19937& engine)
{
    NaiveOperation operation;
    operation.isFill = false;
    operation.hasMap = true;
    const std::size_t entries = 1 + engine() % 64;
    for (std::size_t i = 0; i != entries; ++i) {
        const bool empty = engine() % 5 == 0;
        operation.map.push_back(
            empty ? -1 : static_cast<int>(engine() % static_cast<unsigned>(channels)));
    }
    return operation;
}

struct Buffers
{
    Buffers(const ConversionCase& tested, std::uint32_t newSeed)
        : sourceContent(RandomBytes(NaiveRowBytes(tested.source), newSeed)),
          before(RandomBytes(NaiveRowBytes(tested.destination), newSeed + 1)),
          source(sourceContent, newSeed % 2 == 0 ? Flush::AtEnd : Flush::AtStart, newSeed % 3 & 1U),
          destination(before, newSeed / 2 % 2 == 0 ? Flush::AtEnd : Flush::AtStart,
                      newSeed / 3 % 3 & 1U)
    {}

    Bytes sourceContent;
    Bytes before;
    GuardedBuffer source;
    GuardedBuffer destination;
};

template <typename Row>
Bytes Converted(const ConversionCase& tested, const Buffers& buffers)
{
    const NaiveGeometry& from = tested.source;
    const NaiveGeometry& to = tested.destination;
    const ImageRow source(from.width, from.channels, from.bits, from.planar, buffers.source.data());
    std::copy(buffers.before.begin(), buffers.before.end(), buffers.destination.data());
    Row row(to.width, to.channels, to.bits, to.planar, buffers.destination.data());
    RunConversion(tested, source, row);
    return buffers.destination.bytes();
}

void CheckRoads(ConversionCase tested, int level, std::uint32_t caseSeed)
{
    SCOPED_TRACE(Describe(tested) + ", level " + std::to_string(level) + ", seed " +
                 std::to_string(caseSeed));
    const LimitedLevel limited(level);
    const Buffers buffers(tested, caseSeed);
    Bytes direct = Converted<ImageRow>(tested, buffers);
    const Bytes chain = Converted<ChainRow>(tested, buffers);
    EXPECT_TRUE(chain == direct) << "the roads differ";
    EXPECT_TRUE(buffers.sourceContent == buffers.source.bytes()) << "the source was changed";

    tested.forcePortable = tested.forcePortable || level < 3;
    Bytes expected = NaiveConvert(tested.source, buffers.sourceContent, tested.destination,
                                  buffers.before, tested.operation);
    ForgetLeftPacked(tested, expected);
    ForgetLeftPacked(tested, direct);
    EXPECT_TRUE(expected == direct) << "the samples are wrong";
}

ConversionCase PickCase(std::mt19937& engine)
{
    static const std::vector<int> widths = WidthsOfBlocks();
    static const std::vector<int> channelCounts = ChannelCountsOfKernels();
    const int channels = PickFrom(channelCounts, engine);
    const NaiveOperation operation =
        engine() % 4 == 0 ? RandomMap(channels, engine) : PickFrom(Operations(channels), engine);
    const auto [from, to] = PickFrom(ServedForms(operation), engine);
    const int width = channels > 100 ? PickFrom(Widths(), engine) : PickFrom(widths, engine);
    const int destinationChannels =
        operation.hasMap ? static_cast<int>(operation.map.size()) : channels;
    return {{width, channels, from.bits, from.planar},
            {DestinationWidth(width, operation.factor, engine() % 4), destinationChannels, to.bits,
             to.planar},
            operation,
            engine() % 8 == 0};
}

void SweepSample(int level)
{
    std::mt19937 engine(seed + static_cast<unsigned>(level));
    const std::size_t count = CountSampledCases();
    for (std::size_t i = 0; i != count && !::testing::Test::HasFailure(); ++i) {
        const ConversionCase tested = PickCase(engine);
        CheckRoads(tested, level, static_cast<std::uint32_t>(engine()));
    }
}

void SweepGrid(int level)
{
    std::uint32_t caseSeed = seed;
    for (const int channels : ChannelCounts())
        for (const NaiveOperation& operation : Operations(channels))
            for (const auto& [from, to] : ServedForms(operation))
                for (const int width : Widths())
                    for (unsigned choice = 0; choice != 3; ++choice) {
                        const int entries =
                            operation.hasMap ? static_cast<int>(operation.map.size()) : channels;
                        CheckRoads({{width, channels, from.bits, from.planar},
                                    {DestinationWidth(width, operation.factor, choice), entries,
                                     to.bits, to.planar},
                                    operation,
                                    false},
                                   level, caseSeed++);
                        if (::testing::Test::HasFailure())
                            return;
                    }
}

TEST(DirectRoad, GivesTheBytesOfTheChainAndOfTheReference)
{
    for (const int level : LevelsOfThisProcessor()) {
        if (std::getenv("PELKRAFT_TEST_FULL") == nullptr)
            SweepSample(level);
        else
            SweepGrid(level);
    }
}

// Map, repeat, mirror and depth together, which no single call of a row asks for.
void CheckMixture(const ConversionCase& tested, int level, std::uint32_t caseSeed)
{
    SCOPED_TRACE(Describe(tested) + ", factor " + std::to_string(tested.operation.factor) +
                 ", level " + std::to_string(level) + ", seed " + std::to_string(caseSeed));
    const Buffers buffers(tested, caseSeed);
    const auto& [from, to, operation, portable] = tested;
    ConversionRequest request{{from.width, from.channels, from.bits, from.planar},
                              {to.width, to.channels, to.bits, to.planar},
                              level,
                              operation.factor};
    request.maps = operation.hasMap;
    request.map = {operation.map.size(), operation.map.data()};
    FormatPair formats;
    BuildFormats(formats, request);
    if (!MovesPixels(request, formats))
        return;
    DirectPlan plan;
    ASSERT_TRUE(MakeDirectPlan(plan, request));
    RunDirect(plan, buffers.source.data(), buffers.destination.data());
    EXPECT_TRUE(NaiveConvert(from, buffers.sourceContent, to, buffers.before, operation) ==
                buffers.destination.bytes());
}

TEST(DirectRoad, ServesMapAndTurnAndDepthInOnePlan)
{
    for (const int level : LevelsOfThisProcessor()) {
        std::mt19937 engine(seed);
        const std::size_t count = CountSampledCases();
        for (std::size_t i = 0; i != count && !HasFailure(); ++i) {
            ConversionCase tested = PickCase(engine);
            if (tested.operation.map.size() > maxMapEntries)
                continue;
            constexpr int factors[] = {1, 2, 4, -1, -2, -4};
            tested.operation.factor = PickFrom(factors, engine);
            tested.destination.width = DestinationWidth(
                tested.source.width, tested.operation.factor, static_cast<unsigned>(engine() % 3));
            CheckMixture(tested, level, static_cast<std::uint32_t>(engine()));
        }
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
