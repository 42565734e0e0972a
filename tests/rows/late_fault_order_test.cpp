#include "pelkraft/image_row.h"
#include "tests/rows/refusal.h"

#include <gtest/gtest.h>

#include <string>

// The faults that a row's geometry alone has, once a chain is chosen.
namespace zvk::Pelkraft::TestSupport {
namespace {

const std::string badWidth = "zvk::Pelkraft::ImageRowFormat invalid width";
const std::string badChannelCount = "zvk::Pelkraft::ImageRowFormat invalid channel count";

// No pixel of either row may be looked for.
std::string EndOfRemap(const ImageRow& source, ImageRow& row)
{
    const int map[] = {0, 0, 0, 0};
    return EndOf([&] { row.FillFromWithRemap(source, map, nullptr); });
}

unsigned char anyByte = 0x5A;

TEST(LateFault, OfTheWidthIsToldAheadOfTheChannelCounts)
{
    // Two negative widths of one size pass as equal until here.
    const ImageRow source(-5, -2, 8, false, &anyByte);
    ImageRow row(-5, -2, 8, true, &anyByte);
    EXPECT_EQ(badWidth, EndOf([&] { row.FillFrom(source, nullptr); }));
    EXPECT_EQ(badWidth, EndOf([&] { row.FillFromWithPixelRepeat(source, 1, nullptr); }));
    EXPECT_EQ(badWidth, EndOfRemap(source, row));
    EXPECT_EQ(0x5A, anyByte);
}

// The size of the row with the count, or of the other one, does not fit either.
TEST(LateFault, OfAChannelCountIsToldAheadOfEitherSize)
{
    const ImageRow noChannels(5, -1, 8, false, &anyByte);
    const ImageRow tooLarge(1 << 16, 1 << 16, 8, false, &anyByte);
    const ImageRow both(1 << 16, -(1 << 16), 8, false, &anyByte);
    ImageRow noChannelsTarget(5, -1, 8, true, &anyByte);
    ImageRow tooLargeTarget(1 << 16, 1 << 16, 8, true, &anyByte);
    ImageRow bothTarget(1 << 16, -(1 << 16), 8, true, &anyByte);
    EXPECT_EQ(badChannelCount, EndOfRemap(noChannels, tooLargeTarget));
    EXPECT_EQ(badChannelCount, EndOfRemap(tooLarge, noChannelsTarget));
    EXPECT_EQ(badChannelCount, EndOf([&] { bothTarget.FillFrom(both, nullptr); }));
    EXPECT_EQ(0x5A, anyByte);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
