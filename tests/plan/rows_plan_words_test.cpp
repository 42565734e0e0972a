#include "tests/plan/rows_case.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

// The words of a plan of many rows are held against what each conversion is, written out by hand.
namespace zvk::Pelkraft::TestSupport {
namespace {

std::string StepsOf(const RowsRequest& request)
{
    const PlanWords words = Describe(RowsPlan(request));
    std::string text;
    for (const std::string& step : words.steps)
        text.append(text.empty() ? "" : "; ").append(step);
    return text + ": " + std::to_string(words.bytesRead) + " to " +
           std::to_string(words.bytesWritten);
}

void ExpectSteps(const char* expected, const NaiveJoin& join)
{
    EXPECT_EQ(expected, StepsOf(RequestOf(join, 0))) << Describe(join);
}

TEST(RowsPlan, NamesTheStepsBetweenTonesAndLevels)
{
    NaiveJoin join{{80, 1, 8, true}, {80, 1, 1, true}};
    join.samples = NaiveSamples::AsTones;
    ExpectSteps("round tones to 2 levels; pack to 1 bit: 80 to 10", join);
    join.target.bits = 2;
    ExpectSteps("round tones to 4 levels; pack to 2 bits: 80 to 20", join);
    std::swap(join.source, join.target);
    ExpectSteps("unpack from 2 bits; stretch levels to tones of 8 bits: 20 to 80", join);
    join = {{80, 3, 16, false}, {80, 3, 8, false}};
    join.samples = NaiveSamples::AsLevels;
    ExpectSteps("keep the low 8 bits: 480 to 240", join);
    std::swap(join.source, join.target);
    ExpectSteps("extend to 16 bits: 240 to 480", join);
}

TEST(RowsPlan, NamesConstantsInversionAndStores)
{
    NaiveJoin join{{10, 3, 8, false}, {10, 4, 8, false}, true, {0, 1, 2, -2 - 255}};
    ExpectSteps("map the pixels; set constant samples: 30 to 40", join);
    join.inverted = true;
    ExpectSteps("map the pixels; set constant samples; invert: 30 to 40", join);
    join.map = {-1, -1, -2 - 9, -1};
    ExpectSteps("fill with zeros; set constant samples; invert: 0 to 40", join);
    join = {{10, 3, 8, false}, {10, 3, 8, true}};
    RowsRequest request = RequestOf(join, 0);
    request.streamed = true;
    EXPECT_EQ("split 3 channels of 8 bits; store past the cache: 30 to 30", StepsOf(request));
}

// The last 8 of 10 pixels stand in two bytes.
TEST(RowsPlan, CountsTheBytesOfAllPixelsThatItReads)
{
    NaiveJoin join{{10, 2, 1, true}, {8, 2, 1, true}};
    ExpectSteps("copy the planes: 2 to 2", join);
    join.mirrored = true;
    ExpectSteps("mirror the packed planes: 4 to 2", join);
    join.source.bits = join.target.bits = 2;
    ExpectSteps("mirror the packed planes: 6 to 4", join);
    join.source.width = 12;
    ExpectSteps("mirror the packed planes: 4 to 4", join);
}

TEST(RowsPlan, CountsTheBytesOfTheWidestRow)
{
    constexpr std::int64_t width = std::numeric_limits<std::int64_t>::max();
    RowsRequest request;
    request.source = request.target = {width, 1, 2, true};
    const std::string bytes = std::to_string(std::int64_t{1} << 61);
    EXPECT_EQ("copy the planes: " + bytes + " to " + bytes, StepsOf(request));
}

TEST(RowsPlan, NamesNoStepWithoutPixels)
{
    EXPECT_EQ(": 0 to 0", StepsOf(RequestOf({{0, 3, 8, false}, {0, 3, 8, true}}, 0)));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
