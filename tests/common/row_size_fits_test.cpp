#include "common/row_size.h"

#include <gtest/gtest.h>

#include <limits>

// Worked out by hand: a size fits if the number itself, and not its lowest 32 bits, is the size.
namespace zvk::Pelkraft {
namespace {

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t gibi = 1 << 30;

bool Fits(std::int32_t width, std::int32_t channels, std::int32_t bits, bool planar)
{
    return RowSizeFits({width, channels, bits, planar});
}

TEST(RowSizeFit, ReachesUpToTheLargest32BitNumber)
{
    EXPECT_TRUE(Fits(gibi, 1, 8, false));
    EXPECT_TRUE(Fits(gibi + 1, 1, 8, false));
    EXPECT_TRUE(Fits(1, gibi + 1, 8, false));
    EXPECT_TRUE(Fits(largest, 1, 8, false));
    EXPECT_TRUE(Fits(1, largest, 8, false));
    EXPECT_TRUE(Fits(gibi - 1, 1, 16, false));
    EXPECT_TRUE(Fits(1, largest, 8, true));
    EXPECT_TRUE(Fits(1 << 27, 15, 8, true));

    EXPECT_FALSE(Fits(gibi, 1, 16, false));
    EXPECT_FALSE(Fits(gibi, 2, 8, false));
    EXPECT_FALSE(Fits(1 << 15, 1 << 16, 8, true));
}

TEST(RowSizeFit, IsNotTheSizeThatIsLeftOfALargerOne)
{
    // 2^32, 2^33 + 2^17, 2^62 - 2^32 + 1 and twice that: 0, 2^17, 1 and 2 are left of them.
    EXPECT_FALSE(Fits(1 << 16, 1 << 16, 8, false));
    EXPECT_FALSE(Fits((1 << 16) + 1, 1 << 16, 16, false));
    EXPECT_FALSE(Fits(largest, largest, 8, false));
    EXPECT_FALSE(Fits(largest, largest, 16, false));
}

TEST(RowSizeFit, CountsTheBitsOfAPlane)
{
    // The bits of a plane are counted in 32 bits too, and 7 more of them.
    EXPECT_TRUE(Fits(largest - 7, 1, 1, true));
    EXPECT_TRUE(Fits(largest - 7, 7, 1, true));
    EXPECT_FALSE(Fits(largest - 6, 1, 1, true));
    EXPECT_FALSE(Fits(largest - 7, 9, 1, true));
    EXPECT_TRUE(Fits((1 << 28) - 1, 7, 8, true));
    EXPECT_FALSE(Fits(1 << 28, 1, 8, true));
    EXPECT_FALSE(Fits(gibi, 1, 16, true));
}

TEST(RowSizeFit, IsThereForNothing)
{
    EXPECT_TRUE(Fits(0, 0, 0, false));
    EXPECT_TRUE(Fits(largest, 0, 16, false));
    EXPECT_TRUE(Fits(0, largest, 16, false));
    EXPECT_TRUE(Fits(0, largest, 16, true));
    EXPECT_TRUE(Fits(1 << 27, 0, 8, true));
    // Samples of no bits take no bytes, however many there are.
    EXPECT_TRUE(Fits(1 << 16, 1 << 16, 0, false));
    EXPECT_TRUE(Fits(largest, largest, 0, true));
}

TEST(RowSizeFit, IsThatOfANegativeSizeToo)
{
    EXPECT_TRUE(Fits(-5, 3, 8, false));
    EXPECT_TRUE(Fits(5, -3, 16, true));
    EXPECT_TRUE(Fits(smallest, 1, 8, false));
    EXPECT_FALSE(Fits(smallest, 2, 8, false));
    EXPECT_FALSE(Fits(smallest, -1, 8, false));
}

TEST(RowSizeFit, IsNotTheSizeThatIsLeftOfALargeNegativeOne)
{
    // -2^32, and -2^32 bytes in a plane: 0 is left of both.
    EXPECT_FALSE(Fits(-(1 << 16), 1 << 16, 8, false));
    EXPECT_FALSE(Fits(smallest, 1, 16, true));
    // Beyond 64 bits too, on either side of nothing.
    for (const std::int32_t width : {smallest, largest})
        for (const std::int32_t channels : {smallest, largest}) {
            EXPECT_FALSE(Fits(width, channels, largest, false));
            EXPECT_FALSE(Fits(width, channels, largest - 7, true));
        }
}

} // namespace
} // namespace zvk::Pelkraft
