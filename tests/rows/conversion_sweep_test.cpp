#include "tests/support/chain_row.h"
#include "tests/support/conversion_choices.h"
#include "tests/support/conversion_run.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

// Whole conversions at the processor's own level and without vector code, on the road that a row
// takes and through the chain, each against the naive reference alone, on buffers of exactly the
// rows' size with a forbidden page after or before them. Quick, so that it can be run for each
// planted defect; tests/direct/direct_road_test.cpp goes through all levels. A push takes a sample
// of the grid with a fixed seed, PELKRAFT_TEST_CASES says how many; PELKRAFT_TEST_FULL=1 takes all.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr unsigned seed = 20261121;

std::size_t CountSampledCases()
{
    const char* cases = std::getenv("PELKRAFT_TEST_CASES");
    return cases != nullptr ? std::strtoul(cases, nullptr, 10) : 40000;
}

template <typename Row>
Bytes ConvertedBy(const ConversionCase& oneCase, const Bytes& sourceBytes, const Bytes& before,
                  std::uint32_t caseSeed)
{
    const Flush flush = caseSeed % 2 == 0 ? Flush::AtEnd : Flush::AtStart;
    const std::size_t gap = caseSeed % 3 == 0 ? 1 : 0;
    const GuardedBuffer source(sourceBytes, flush, gap);
    const GuardedBuffer destination(before, flush, gap);
    const NaiveGeometry& from = oneCase.source;
    const NaiveGeometry& to = oneCase.destination;
    const ImageRow sourceRow(from.width, from.channels, from.bits, from.planar, source.data());
    Row row(to.width, to.channels, to.bits, to.planar, destination.data());
    RunConversion(oneCase, sourceRow, row);
    EXPECT_TRUE(sourceBytes == source.bytes()) << "the source was changed";
    Bytes converted = destination.bytes();
    ForgetLeftPacked(oneCase, converted);
    return converted;
}

void Check(const ConversionCase& oneCase, std::uint32_t caseSeed)
{
    SCOPED_TRACE(Describe(oneCase) + ", seed " + std::to_string(caseSeed));
    const Bytes source = RandomBytes(NaiveRowBytes(oneCase.source), caseSeed);
    const Bytes before = RandomBytes(NaiveRowBytes(oneCase.destination), caseSeed + 1);
    Bytes expected =
        NaiveConvert(oneCase.source, source, oneCase.destination, before, oneCase.operation);
    ForgetLeftPacked(oneCase, expected);
    EXPECT_TRUE(expected == ConvertedBy<ImageRow>(oneCase, source, before, caseSeed));
    EXPECT_TRUE(expected == ConvertedBy<ChainRow>(oneCase, source, before, caseSeed))
        << "through the chain";
}

ConversionCase CaseOf(const std::pair<Form, Form>& pair, const NaiveOperation& operation,
                      int channels, int sourceWidth, int destinationWidth, bool forcePortable)
{
    const int destinationChannels =
        operation.hasMap ? static_cast<int>(operation.map.size()) : channels;
    return {{sourceWidth, channels, pair.first.bits, pair.first.planar},
            {destinationWidth, destinationChannels, pair.second.bits, pair.second.planar},
            operation,
            forcePortable};
}

template <typename List>
const auto& PickFrom(const List& list, std::mt19937& engine)
{
    return list[engine() % std::size(list)];
}

void SweepSample()
{
    std::mt19937 engine(seed);
    const auto channelCounts = ChannelCounts();
    const auto widths = Widths();
    const std::size_t count = CountSampledCases();
    ASSERT_NE(count, 0U);
    for (std::size_t i = 0; i != count && !::testing::Test::HasFailure(); ++i) {
        const int channels = PickFrom(channelCounts, engine);
        const NaiveOperation operation = PickFrom(Operations(channels), engine);
        const auto pair = PickFrom(ServedForms(operation), engine);
        const int width = PickFrom(widths, engine);
        const int destinationWidth = DestinationWidth(width, operation.factor, engine() % 4);
        Check(CaseOf(pair, operation, channels, width, destinationWidth, engine() % 2 == 0),
              static_cast<std::uint32_t>(engine()));
    }
}

void SweepChannels(int channels)
{
    std::uint32_t caseSeed = seed + static_cast<std::uint32_t>(channels) * 1000003U;
    for (const NaiveOperation& operation : Operations(channels))
        for (const auto& pair : ServedForms(operation))
            for (const int width : Widths())
                for (unsigned choice = 0; choice != 3; ++choice)
                    for (const bool forcePortable : {false, true})
                        Check(CaseOf(pair, operation, channels, width,
                                     DestinationWidth(width, operation.factor, choice),
                                     forcePortable),
                              caseSeed++);
}

TEST(Conversion, GivesTheNaiveSamplesAndTouchesNoOtherByte)
{
    if (std::getenv("PELKRAFT_TEST_FULL") == nullptr) {
        RecordProperty("seed", static_cast<int>(seed));
        SweepSample();
        return;
    }
    for (const int channels : ChannelCounts()) {
        SweepChannels(channels);
        if (HasFailure())
            return;
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
