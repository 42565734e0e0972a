#include "plan/conversion_checks.h"
#include "tests/rows/guarded_row.h"
#include "tests/rows/refusal.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {
namespace {

FormatPair FormatsOf(int sourceWidth, int destinationWidth, int factor)
{
    const RowGeometry source{sourceWidth, 1, 8, false};
    const RowGeometry destination{destinationWidth, 1, 8, false};
    FormatPair formats;
    BuildFormats(formats, {source, destination, 0, factor});
    return formats;
}

void ExpectActive(int sourceWidth, int destinationWidth, int factor, int sourceActive,
                  int destinationActive)
{
    const FormatPair formats = FormatsOf(sourceWidth, destinationWidth, factor);
    EXPECT_EQ(sourceActive, formats.source.activeWidth);
    EXPECT_EQ(destinationActive, formats.destination.activeWidth);
    EXPECT_EQ(sourceWidth, formats.source.width);
    EXPECT_EQ(destinationWidth, formats.destination.width);
    EXPECT_EQ(factor < 0, formats.source.reversed);
    EXPECT_FALSE(formats.destination.reversed);
}

TEST(ActiveWidth, IsThatOfTheNarrowerRow)
{
    ExpectActive(100, 60, 1, 60, 60);
    ExpectActive(60, 100, 1, 60, 60);
    ExpectActive(100, 100, 1, 100, 100);
    ExpectActive(0, 100, 1, 0, 0);
    ExpectActive(100, 0, 1, 0, 0);
}

TEST(ActiveWidth, CountsTheRepeats)
{
    ExpectActive(100, 300, 2, 100, 200);
    ExpectActive(100, 301, 4, 76, 301);
    ExpectActive(100, 301, -4, 76, 301);
    ExpectActive(5, 20, 4, 5, 20);
    ExpectActive(5, 17, -4, 5, 17);
    ExpectActive(5, 16, 4, 4, 16);
    ExpectActive(100, 1, 2, 1, 1);
}

TEST(ActiveWidth, IsRightPastThirtyTwoBits)
{
    constexpr int largest = 0x7FFFFFFF;
    ExpectActive(largest, largest, 4, 0x20000000, largest);
    ExpectActive(largest, largest, -2, 0x40000000, largest);
    ExpectActive(largest, 10, 4, 3, 10);
    ExpectActive(0x40000000, largest, 2, 0x40000000, largest);
    ExpectActive(1, largest, 4, 1, 4);
}

TEST(ActiveWidth, CoversTheDestinationWithTheFewestSourcePixels)
{
    for (int sourceWidth = 0; sourceWidth != 12; ++sourceWidth)
        for (int destinationWidth = 0; destinationWidth != 40; ++destinationWidth)
            for (const int factor : {1, 2, 4, -1, -2, -4}) {
                int sourceActive = 0;
                int destinationActive = 0;
                // One source pixel after the other, for as long as there is room.
                while (sourceActive != sourceWidth && destinationActive != destinationWidth) {
                    ++sourceActive;
                    destinationActive =
                        std::min(destinationActive + std::abs(factor), destinationWidth);
                }
                ExpectActive(sourceWidth, destinationWidth, factor, sourceActive,
                             destinationActive);
            }
}

TEST(ActiveWidth, NeedNotFitTheOtherRowInAnyForm)
{
    const RowGeometry source{7, 3, 1, true};
    const RowGeometry destination{9, 4, 16, false};
    FormatPair formats;
    BuildFormats(formats, {source, destination, 5, -1});
    EXPECT_EQ(1, formats.source.bits);
    EXPECT_EQ(0x600, formats.source.layout);
    EXPECT_EQ(3, formats.source.channels);
    EXPECT_EQ(16, formats.destination.bits);
    EXPECT_EQ(0x100, formats.destination.layout);
    EXPECT_EQ(4, formats.destination.channels);
}

TEST(Layout, IsPackedForPlanesOfNoWholeBytes)
{
    for (int bits = -20; bits != 40; ++bits) {
        EXPECT_EQ(0x100, LayoutOf(bits, false)) << bits;
        EXPECT_EQ(bits % 8 == 0 ? 0x200 : 0x600, LayoutOf(bits, true)) << bits;
    }
}

// The pixels beyond the active ones stay as they were, and the source's are never read: the
// buffer there is forbidden.
void ExpectTail(int sourceWidth, int destinationWidth, int factor, int written)
{
    GuardedRow row({destinationWidth, 2, 8, false}, 8);
    const int read = std::min(sourceWidth, (written + std::abs(factor) - 1) / std::abs(factor));
    const GuardedRow content({read, 2, 8, false}, 9);
    const ImageRow source(sourceWidth, 2, 8, false, content.buffer.data());
    if (factor == 1)
        row.row.FillFrom(source, nullptr);
    else
        row.row.FillFromWithPixelRepeat(source, factor, nullptr);
    const Bytes after = row.buffer.bytes();
    const auto tail = static_cast<std::ptrdiff_t>(written) * 2;
    EXPECT_TRUE(std::equal(after.begin() + tail, after.end(), row.before.begin() + tail));
    for (int pixel = 0; pixel != written; ++pixel)
        for (int channel = 0; channel != 2; ++channel) {
            const int from = pixel / factor * 2 + channel;
            EXPECT_EQ(content.before[static_cast<std::size_t>(from)],
                      after[static_cast<std::size_t>(pixel * 2 + channel)]);
        }
}

TEST(ActiveWidth, LimitsWhatIsReadAndWritten)
{
    ExpectTail(100, 60, 1, 60);
    ExpectTail(60, 100, 1, 60);
    ExpectTail(100, 300, 2, 200);
    ExpectTail(100, 301, 4, 301);
    ExpectTail(5, 3, 2, 3);
}

TEST(ActiveWidth, OfNothingTouchesNothing)
{
    for (const int factor : {1, -1, 2, -4})
        for (const auto& [from, to] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{0, 0}}) {
            const GuardedRow source({from, 2, 8, true}, 1);
            GuardedRow row({to, 2, 16, false}, 2);
            EXPECT_EQ(returned,
                      EndOf([&] { row.row.FillFromWithPixelRepeat(source.row, factor, nullptr); }));
            EXPECT_TRUE(row.IsUntouched());
        }
}

// Without pixels to move no pointer is looked at.
TEST(ActiveWidth, OfNothingNeedsNoData)
{
    const ImageRow source;
    ImageRow row;
    unsigned char byte = 1;
    ImageRow empty(0, 0, 8, false, &byte);
    EXPECT_EQ(Words::depth, EndOf([&] { row.FillFrom(source, nullptr); }));
    EXPECT_EQ(returned, EndOf([&] { empty.FillFrom(empty, nullptr); }));
    EXPECT_EQ(1, byte);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
