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

TEST(RowSizeFit, CountsTheBytesOfAPlaneAndNotItsBits)
{
    EXPECT_TRUE(Fits(largest, 1, 1, true));
    EXPECT_TRUE(Fits(largest, 7, 1, true));
    EXPECT_FALSE(Fits(largest, 8, 1, true));
    EXPECT_TRUE(Fits(1 << 28, 1, 8, true));
    EXPECT_TRUE(Fits(1 << 28, 7, 8, true));
    EXPECT_FALSE(Fits(1 << 28, 8, 8, true));
    EXPECT_TRUE(Fits(largest, 1, 8, true));
    EXPECT_TRUE(Fits(gibi - 1, 1, 16, true));
    EXPECT_FALSE(Fits(gibi, 1, 16, true));
    EXPECT_TRUE(Fits(1 << 28, 6, 10, true));
    EXPECT_FALSE(Fits(1 << 28, 7, 10, true));
}

TEST(RowSizeFit, IsThereForNothing)
{
    EXPECT_TRUE(Fits(0, 0, 1, false));
    EXPECT_TRUE(Fits(largest, 0, 16, false));
    EXPECT_TRUE(Fits(0, largest, 16, false));
    EXPECT_TRUE(Fits(0, largest, 16, true));
    EXPECT_TRUE(Fits(largest, 0, 16, true));
}

// The 32-bit size of these is the number itself, or what is left of it.
TEST(TrueRowSize, IsTheOneWithoutAWrap)
{
    EXPECT_TRUE(IsTrueRowSize({largest, 1, 8, false}));
    EXPECT_TRUE(IsTrueRowSize({largest - 7, 7, 1, true}));
    EXPECT_TRUE(IsTrueRowSize({(1 << 28) - 1, 7, 8, true}));
    EXPECT_TRUE(IsTrueRowSize({1 << 27, 15, 8, true}));
    // Samples of no bits take no bytes, however many there are.
    EXPECT_TRUE(IsTrueRowSize({1 << 16, 1 << 16, 0, false}));
    EXPECT_TRUE(IsTrueRowSize({largest, largest, 0, true}));
    EXPECT_TRUE(IsTrueRowSize({-5, 3, 8, false}));
    EXPECT_TRUE(IsTrueRowSize({5, -3, 16, true}));
    EXPECT_TRUE(IsTrueRowSize({smallest, 1, 8, false}));
    EXPECT_TRUE(IsTrueRowSize({gibi, 1, 8, false}));

    EXPECT_FALSE(IsTrueRowSize({1 << 16, 1 << 16, 8, false}));
    EXPECT_FALSE(IsTrueRowSize({smallest, 2, 8, false}));
    EXPECT_FALSE(IsTrueRowSize({smallest, -1, 8, false}));
    // -2^32, and -2^32 bytes in a plane: 0 is left of both.
    EXPECT_FALSE(IsTrueRowSize({-(1 << 16), 1 << 16, 8, false}));
    EXPECT_FALSE(IsTrueRowSize({smallest, 1, 16, true}));
    // Beyond 64 bits too, on either side of nothing.
    for (const std::int32_t width : {smallest, largest})
        for (const std::int32_t channels : {smallest, largest}) {
            EXPECT_FALSE(IsTrueRowSize({width, channels, largest, false}));
            EXPECT_FALSE(IsTrueRowSize({width, channels, largest - 7, true}));
        }
}

TEST(TrueRowSize, IsHiddenWhereOnlyTheBitsOfAPlaneWrap)
{
    EXPECT_TRUE(HidesTrueRowSize({largest - 6, 1, 1, true}));
    EXPECT_TRUE(HidesTrueRowSize({1 << 28, 1, 8, true}));
    EXPECT_TRUE(HidesTrueRowSize({1 << 28, 7, 8, true}));
    EXPECT_TRUE(HidesTrueRowSize({largest, 1, 8, true}));

    EXPECT_FALSE(HidesTrueRowSize({largest - 7, 1, 1, true}));
    EXPECT_FALSE(HidesTrueRowSize({1 << 28, 8, 8, true}));
    EXPECT_FALSE(HidesTrueRowSize({-(1 << 28), 1, 16, true}));
    EXPECT_FALSE(HidesTrueRowSize({-(1 << 28), -1, 8, true}));
    EXPECT_FALSE(HidesTrueRowSize({-(1 << 28), 1, -8, true}));
    EXPECT_FALSE(HidesTrueRowSize({1 << 28, -1, -8, true}));
    EXPECT_FALSE(HidesTrueRowSize({1 << 27, 1, 17, true}));
    EXPECT_FALSE(HidesTrueRowSize({1 << 16, 1 << 16, 8, false}));
}

} // namespace
} // namespace zvk::Pelkraft
