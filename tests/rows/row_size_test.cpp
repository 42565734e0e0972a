#include "pelkraft/image_row.h"
#include "tests/rows/refusal.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

// A 32-bit register keeps this of a number.
int Wrap(std::int64_t number)
{
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(number)));
}

int NaiveSize(int width, int channels, int bits, bool planar)
{
    if (!planar)
        return Wrap(std::int64_t{Wrap(std::int64_t{channels} * width)} *
                    (Wrap(std::int64_t{bits} + 7) / 8));
    const int planeBits = Wrap(std::int64_t{Wrap(std::int64_t{width} * bits)} + 7);
    return Wrap(std::int64_t{channels} * (planeBits / 8));
}

TEST(RowSize, IsWholeBytesForEachInterleavedSample)
{
    EXPECT_EQ(400, ImageRow::CalcBufferSize(100, 4, 1, false));
    EXPECT_EQ(400, ImageRow::CalcBufferSize(100, 4, 2, false));
    EXPECT_EQ(400, ImageRow::CalcBufferSize(100, 4, 8, false));
    EXPECT_EQ(30, ImageRow::CalcBufferSize(5, 3, 16, false));
    EXPECT_EQ(800, ImageRow::CalcBufferSize(100, 4, 10, false));
}

TEST(RowSize, RoundsEachPlaneUpByItself)
{
    EXPECT_EQ(52, ImageRow::CalcBufferSize(100, 4, 1, true));
    EXPECT_EQ(2, ImageRow::CalcBufferSize(3, 2, 2, true));
    EXPECT_EQ(400, ImageRow::CalcBufferSize(100, 4, 8, true));
    EXPECT_EQ(800, ImageRow::CalcBufferSize(100, 4, 16, true));
    EXPECT_EQ(3 * 13, ImageRow::CalcBufferSize(10, 3, 10, true));
    EXPECT_EQ(3 * 14, ImageRow::CalcBufferSize(11, 3, 10, true));
}

TEST(RowSize, IsNeverRoundedUpToTheAlignment)
{
    EXPECT_EQ(17, ImageRow::CalcBufferSize(17, 1, 8, false));
    EXPECT_EQ(17, ImageRow::CalcBufferSize(17, 1, 8, true));
}

TEST(RowSize, RoundsNegativeNumbersTowardZero)
{
    EXPECT_EQ(-20, ImageRow::CalcBufferSize(-5, 4, 8, false));
    EXPECT_EQ(0, ImageRow::CalcBufferSize(5, 4, -14, false));
    EXPECT_EQ(-20, ImageRow::CalcBufferSize(5, 4, -15, false));
    EXPECT_EQ(0, ImageRow::CalcBufferSize(-14, 4, 1, true));
    EXPECT_EQ(-4, ImageRow::CalcBufferSize(-15, 4, 1, true));
    EXPECT_EQ(20, ImageRow::CalcBufferSize(-5, -4, 8, false));
}

TEST(RowSize, WrapsInThirtyTwoBits)
{
    EXPECT_EQ(0, ImageRow::CalcBufferSize(65536, 65536, 8, false));
    EXPECT_EQ(65536, ImageRow::CalcBufferSize(65537, 65536, 8, false));
    EXPECT_EQ(smallest, ImageRow::CalcBufferSize(65536, 32768, 8, false));
    EXPECT_EQ(0, ImageRow::CalcBufferSize(1 << 28, 1, 16, true));
    EXPECT_EQ(-268435455, ImageRow::CalcBufferSize(largest, largest, largest, false));
}

TEST(RowSize, FollowsTheFormulasOverTheWholeRange)
{
    constexpr int numbers[] = {smallest, smallest + 1,
                               -65537,   -65536,
                               -17,      -8,
                               -7,       -1,
                               0,        1,
                               2,        7,
                               8,        9,
                               10,       16,
                               17,       100,
                               65535,    65536,
                               65537,    1 << 28,
                               1 << 30,  largest};
    for (const int width : numbers)
        for (const int channels : numbers)
            for (const int bits : numbers)
                for (const bool planar : {false, true})
                    EXPECT_EQ(NaiveSize(width, channels, bits, planar),
                              ImageRow::CalcBufferSize(width, channels, bits, planar))
                        << width << " x " << channels << " x " << bits << (planar ? " planar" : "");
}

TEST(RowSize, IsWhatTheRowAnswers)
{
    unsigned char byte = 0;
    const ImageRow interleaved(7, 3, 10, false, &byte);
    EXPECT_EQ(42, interleaved.GetDataSize());
    const ImageRow planar(7, 3, 10, true, &byte);
    EXPECT_EQ(27, planar.GetDataSize());
}

TEST(PlaneSize, IsOnePlaneOfPackedBitsRoundedUp)
{
    unsigned char byte = 0;
    EXPECT_EQ(13, ImageRow(100, 4, 1, true, &byte).CalcPlaneSize());
    EXPECT_EQ(1, ImageRow(3, 2, 2, true, &byte).CalcPlaneSize());
    EXPECT_EQ(100, ImageRow(100, 4, 8, true, &byte).CalcPlaneSize());
    EXPECT_EQ(13, ImageRow(10, 3, 10, true, &byte).CalcPlaneSize());
    EXPECT_EQ(200, ImageRow(100, 0, 16, true, &byte).CalcPlaneSize());
    EXPECT_EQ(-1, ImageRow(-15, 4, 1, true, &byte).CalcPlaneSize());
    EXPECT_EQ(0, ImageRow(1 << 28, 1, 16, true, &byte).CalcPlaneSize());
}

TEST(PlaneSize, IsRefusedForInterleavedRowsOfAnyChannelCount)
{
    unsigned char byte = 0;
    for (const int channels : {0, 1, 4}) {
        const ImageRow row(10, channels, 8, false, &byte);
        EXPECT_EQ(Words::noPlanes, EndOf([&] { (void)row.CalcPlaneSize(); }));
    }
    EXPECT_EQ(Words::noPlanes, EndOf([] { (void)ImageRow().CalcPlaneSize(); }));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
