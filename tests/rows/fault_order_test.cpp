#include "tests/rows/guarded_row.h"
#include "tests/rows/refusal.h"
#include "tests/rows/row_fields.h"
#include "tests/support/chain_row.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

// Each fault has its words, and of several faults in one call the first in the order shows.
namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Words;

constexpr int smallest = std::numeric_limits<int>::min();

// Rows of any geometry over buffers that no refused call may touch.
class Rows
{
public:
    Rows(const NaiveGeometry& from, const NaiveGeometry& to)
        : source(from.width, from.channels, from.bits, from.planar, sourceBytes.data()),
          row(to.width, to.channels, to.bits, to.planar, rowBytes.data())
    {}

    std::string Fill()
    {
        return Ended([this] { row.FillFrom(source, nullptr); });
    }
    std::string Remap(const int* map)
    {
        return Ended([&] { row.FillFromWithRemap(source, map, nullptr); });
    }
    std::string Repeat(int factor)
    {
        return Ended([&] { row.FillFromWithPixelRepeat(source, factor, nullptr); });
    }
    std::string ConvertWithBothOptions(int factor)
    {
        const int map[] = {0, 0, 0, 0};
        return Ended([&] {
            Plan plan;
            plan.request = {GeometryOf(source), GeometryOf(row), 0, factor};
            plan.request.repeats = plan.request.maps = true;
            plan.request.map = {2, map};
            MakePlan(plan);
        });
    }

private:
    std::string Ended(const std::function<void()>& operation)
    {
        const RowFields sourceBefore = FieldsOf(source);
        const RowFields rowBefore = FieldsOf(row);
        std::string end = EndOf(operation);
        EXPECT_EQ(Bytes(bytes, 0x3C), sourceBytes);
        EXPECT_EQ(Bytes(bytes, 0xC3), rowBytes);
        EXPECT_TRUE(sourceBefore == FieldsOf(source));
        EXPECT_TRUE(rowBefore == FieldsOf(row));
        return end;
    }

    static constexpr std::size_t bytes = 4096;
    Bytes sourceBytes = Bytes(bytes, 0x3C);
    Bytes rowBytes = Bytes(bytes, 0xC3);
    ImageRow source;
    ImageRow row;
};

constexpr int anyMap[] = {0, 1, 0, 1};

TEST(Depth, IsOneOfFiveAndElseRefused)
{
    for (int bits = -40; bits != 70; ++bits) {
        const bool served = bits == 1 || bits == 2 || bits == 8 || bits == 10 || bits == 16;
        for (const bool planar : {false, true}) {
            SCOPED_TRACE(bits);
            EXPECT_EQ(served ? std::string(returned) : depth,
                      EndOf([&] { RequireSupportedDepth(bits); }));
            if (served)
                continue;
            EXPECT_EQ(depth, Rows({5, 2, bits, planar}, {5, 2, 8, planar}).Fill());
            EXPECT_EQ(depth, Rows({5, 2, 8, planar}, {5, 2, bits, planar}).Fill());
            EXPECT_EQ(depth, Rows({5, 2, bits, planar}, {5, 2, bits, planar}).Remap(anyMap));
            EXPECT_EQ(depth, Rows({5, 2, bits, planar}, {5, 2, 8, planar}).Repeat(-2));
        }
    }
    for (const int bits : {smallest, smallest + 1, smallest + 8, 0x7FFFFFFF, 0x10000008})
        EXPECT_EQ(depth, EndOf([&] { RequireSupportedDepth(bits); })) << bits;
}

// The width of the destination decides whether the source's fails, and the other way round.
TEST(Width, IsRefusedWhereNegative)
{
    EXPECT_EQ(width, Rows({-1, 2, 8, false}, {5, 2, 8, false}).Fill());
    EXPECT_EQ(width, Rows({5, 2, 8, false}, {-1, 2, 8, false}).Fill());
    for (const int negative : {-1, -7, -65536, smallest + 1, smallest})
        for (const int other : {-3, 0, 5, 100})
            for (const int factor : {1, 2, 4, -1, -2, -4}) {
                SCOPED_TRACE(negative);
                EXPECT_EQ(width, Rows({negative, 2, 8, false}, {other, 2, 8, true}).Repeat(factor));
                EXPECT_EQ(width, Rows({other, 2, 8, true}, {negative, 2, 8, false}).Repeat(factor));
            }
    EXPECT_EQ(width, Rows({-1, 2, 8, false}, {5, 2, 16, false}).Remap(anyMap));
    EXPECT_EQ(width, Rows({5, 2, 1, true}, {-1, 2, 8, false}).Remap(anyMap));
    EXPECT_EQ(width, Rows({-1, 2, 2, true}, {-1, 2, 2, true}).Repeat(2));
}

TEST(Width, IsRefusedWhereTheRowsSizeDoesNotFit)
{
    EXPECT_EQ(width, Rows({65536, 65536, 8, false}, {1, 65536, 8, false}).Fill());
    EXPECT_EQ(width, Rows({1, 65536, 8, false}, {65536, 65536, 8, false}).Fill());
    EXPECT_EQ(width, Rows({1 << 30, 1, 16, true}, {1 << 30, 1, 16, true}).Repeat(-1));
}

TEST(ChannelCount, IsRefusedWhereNegative)
{
    EXPECT_EQ(channelCount, Rows({5, -1, 8, false}, {5, -1, 8, false}).Fill());
    EXPECT_EQ(channelCount, Rows({5, -1, 8, true}, {5, 2, 16, false}).Remap(anyMap));
    EXPECT_EQ(channelCount, Rows({5, 2, 8, true}, {5, -1, 8, false}).Remap(anyMap));
    EXPECT_EQ(channelCount, Rows({5, 2, 8, true}, {5, smallest, 8, false}).Remap(nullptr));
    EXPECT_EQ(channelCount, Rows({5, -2, 2, true}, {5, -2, 2, true}).Repeat(4));
    EXPECT_EQ(channelCount, Rows({0, -2, 8, true}, {0, -2, 8, true}).Repeat(1));
}

TEST(FaultOrder, PutsTheSourcesDepthFirst)
{
    // The destination's negative width is a fault of the source's format.
    EXPECT_EQ(depth, Rows({5, 2, 4, false}, {-1, 2, 8, false}).Fill());
    EXPECT_EQ(depth, Rows({5, 2, 4, false}, {5, 2, 8, false}).ConvertWithBothOptions(1));
    EXPECT_EQ(depth, Rows({5, 2, 4, false}, {5, 2, 16, false}).Fill());
    EXPECT_EQ(depth, Rows({5, -1, 4, false}, {5, -1, 8, false}).Fill());
}

TEST(FaultOrder, PutsTheSourcesWidthSecond)
{
    EXPECT_EQ(width, Rows({5, 2, 8, false}, {-1, 2, 4, false}).Fill());
    EXPECT_EQ(width, Rows({5, 2, 8, false}, {-1, 2, 8, false}).ConvertWithBothOptions(1));
    EXPECT_EQ(width, Rows({5, 2, 1, false}, {-1, 2, 8, false}).Fill());
    EXPECT_EQ(width, Rows({5, -1, 8, false}, {-1, -1, 8, false}).Fill());
}

TEST(FaultOrder, PutsTheDestinationsDepthThird)
{
    // The source's negative width is a fault of the destination's format.
    EXPECT_EQ(depth, Rows({-1, 2, 8, false}, {5, 2, 4, false}).Fill());
    EXPECT_EQ(depth, Rows({5, 2, 8, false}, {5, 2, 4, false}).ConvertWithBothOptions(1));
    EXPECT_EQ(depth, Rows({5, 2, 16, false}, {5, 2, 4, false}).Fill());
}

TEST(FaultOrder, PutsTheDestinationsWidthFourth)
{
    EXPECT_EQ(width, Rows({-1, 2, 8, false}, {5, 2, 8, false}).ConvertWithBothOptions(1));
    EXPECT_EQ(width, Rows({-1, 2, 1, false}, {5, 2, 16, false}).Fill());
    EXPECT_EQ(width, Rows({-1, 2, 10, true}, {5, 2, 8, false}).Fill());
}

TEST(FaultOrder, PutsTheSecondOptionFifth)
{
    EXPECT_EQ(oneOption, Rows({5, 2, 8, false}, {5, 2, 8, false}).ConvertWithBothOptions(1));
    EXPECT_EQ(oneOption, Rows({5, 2, 1, false}, {5, 2, 16, false}).ConvertWithBothOptions(-1));
    EXPECT_EQ(oneOption, Rows({5, 2, 8, false}, {5, 2, 10, true}).ConvertWithBothOptions(2));
    EXPECT_EQ(oneOption, Rows({5, -2, 8, false}, {5, -2, 8, false}).ConvertWithBothOptions(2));
    EXPECT_EQ(oneOption, Rows({-5, 2, 8, false}, {-5, 2, 8, false}).ConvertWithBothOptions(1));
}

TEST(FaultOrder, PutsTheChainAheadOfWhatOnlyThePixelsNeed)
{
    // Both widths negative pass as equal until the chain is there.
    EXPECT_EQ(to16, Rows({-5, 2, 1, false}, {-5, 2, 16, false}).Fill());
    EXPECT_EQ(unsupported, Rows({5, -2, 1, false}, {5, -2, 8, false}).Fill());
    EXPECT_EQ(from16, Rows({5, 0, 16, false}, {5, 2, 2, false}).Remap(anyMap));
    EXPECT_EQ(packer, Rows({5, 0, 8, false}, {5, 0, 10, true}).Fill());
    EXPECT_EQ(to16, Rows({5, 2, 2, false}, {5, 2, 16, false}).Remap(nullptr));
    EXPECT_EQ(unsupported, Rows({0, 2, 8, false}, {0, 2, 2, false}).Fill());
}

// A repeat rounds a few pixels less than none up to none, so that such a width passes as a format.
TEST(FaultOrder, PutsTheWidthsOfBothRowsAheadOfTheChannelCounts)
{
    EXPECT_EQ(width, Rows({5, -2, 8, false}, {-1, -2, 8, false}).Repeat(4));
    EXPECT_EQ(width, Rows({-5, -2, 8, false}, {-5, -2, 8, true}).Fill());
    EXPECT_EQ(width, Rows({-5, -2, 8, false}, {-5, -2, 8, true}).Repeat(1));
    EXPECT_EQ(width, Rows({5, -2, 16, true}, {-3, -2, 8, false}).Repeat(-4));
    EXPECT_EQ(width, Rows({-5, -2, 8, false}, {-5, 3, 8, false}).Remap(anyMap));
    EXPECT_EQ(channelCount, Rows({5, -2, 8, false}, {5, -2, 8, false}).Repeat(4));
}

// The size of the row with the count, or of the other one, does not fit either.
TEST(FaultOrder, PutsTheChannelCountsAheadOfEitherSize)
{
    const NaiveGeometry tooLarge{65536, 65536, 8, true};
    const NaiveGeometry both{65536, -65536, 8, false};
    EXPECT_EQ(channelCount, Rows({5, -1, 8, false}, tooLarge).Remap(anyMap));
    EXPECT_EQ(channelCount, Rows(tooLarge, {5, -1, 8, true}).Remap(anyMap));
    EXPECT_EQ(channelCount, Rows(both, both).Fill());
}

// A destination without channels has nothing to move, but faults all the same.
TEST(FaultOrder, PutsTheSizesAheadOfARowWithoutChannels)
{
    EXPECT_EQ(width, Rows({-5, 0, 8, false}, {-5, 0, 8, true}).Fill());
    EXPECT_EQ(width, Rows({65536, 65536, 8, false}, {5, 0, 8, false}).Remap(anyMap));
    EXPECT_EQ(channelCount, Rows({5, -2, 8, false}, {5, 0, 8, false}).Remap(anyMap));
}

TEST(FaultOrder, PutsTheMissingMapLast)
{
    EXPECT_EQ(unsupported, Rows({5, 0, 8, false}, {5, 2, 8, false}).Remap(nullptr));
    EXPECT_EQ(unsupported, Rows({5, 2, 10, true}, {5, 2, 10, true}).Remap(nullptr));
    EXPECT_EQ(width, Rows({-5, 2, 8, false}, {-5, 2, 8, false}).Remap(nullptr));
    EXPECT_EQ(remap, Rows({5, 2, 8, false}, {5, 2, 8, false}).Remap(nullptr));
    // Without a pixel to move it is missing as well.
    EXPECT_EQ(remap, Rows({0, 2, 8, false}, {5, 2, 8, false}).Remap(nullptr));
}

TEST(FaultOrder, PutsTheChannelsOfAFillAheadOfAllElse)
{
    EXPECT_EQ(fill, Rows({5, 2, 4, false}, {-1, 3, 4, false}).Fill());
    EXPECT_EQ(fill, Rows({-5, -1, 8, false}, {5, 0, 8, false}).Fill());
    EXPECT_EQ(repeat, Rows({5, 2, 4, false}, {-1, 3, 4, false}).Repeat(1));
}

TEST(FaultOrder, PutsTheFactorOfARepeatAheadOfTheFormats)
{
    EXPECT_EQ(repeat, Rows({5, 2, 4, false}, {5, 2, 4, false}).Repeat(3));
    EXPECT_EQ(repeat, Rows({-5, 2, 8, false}, {5, 2, 8, false}).Repeat(0));
    EXPECT_EQ(repeat, Rows({5, 2, 10, true}, {5, 2, 10, true}).Repeat(smallest));
}

TEST(Factor, IsOneTwoOrFourOfEitherSign)
{
    for (const int factor : {0, 3, -3, 5, -5, 6, 8, -8, 16, 0x7FFFFFFF, smallest, smallest + 1,
                             smallest + 4, 0x10001, 256})
        EXPECT_EQ(repeat, Rows({5, 2, 8, false}, {5, 2, 8, false}).Repeat(factor)) << factor;
}

// Each call below gets to the chain and no further.
TEST(Chain, IsRefusedInTheWordsOfItsLine)
{
    const NaiveGeometry byte{5, 2, 8, false};
    const NaiveGeometry word{5, 2, 16, false};
    EXPECT_EQ(unsupported, Rows({5, 2, 1, false}, byte).Fill());
    EXPECT_EQ(unsupported, Rows(byte, {5, 2, 2, false}).Fill());
    EXPECT_EQ(unsupported, Rows(byte, {5, 2, 1, false}).Remap(anyMap));
    EXPECT_EQ(unsupported, Rows({5, 2, 1, true}, {5, 2, 2, false}).Repeat(2));
    EXPECT_EQ(to16, Rows({5, 2, 1, false}, word).Fill());
    EXPECT_EQ(to16, Rows({5, 2, 10, false}, word).Fill());
    EXPECT_EQ(from16, Rows(word, {5, 2, 2, false}).Fill());
    EXPECT_EQ(from16, Rows(word, {5, 2, 10, false}).Repeat(-1));
    EXPECT_EQ(packer, Rows(byte, {5, 2, 10, true}).Fill());
    EXPECT_EQ(packer, Rows(word, {5, 2, 10, true}).Remap(anyMap));
    EXPECT_EQ(packer, Rows({5, 2, 2, true}, {5, 2, 10, true}).Fill());
    EXPECT_EQ(unpacker, Rows({5, 2, 10, true}, byte).Fill());
    EXPECT_EQ(unpacker, Rows({5, 2, 10, true}, word).Fill());
    EXPECT_EQ(unpacker, Rows({5, 2, 10, true}, {5, 2, 1, true}).Fill());
    EXPECT_EQ(unpacker, Rows({5, 2, 10, true}, {5, 2, 10, true}).Repeat(1));
    EXPECT_EQ(unpacker, Rows({5, 2, 10, true}, {5, 2, 10, false}).Repeat(2));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
