#include "tests/rows/fake_processor.h"
#include "tests/rows/guarded_row.h"
#include "tests/rows/refusal.h"
#include "tests/rows/taught_row.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Options = ImageRow::OptionalParameters;

constexpr int map[] = {0};

void ExpectOptions(const TaughtRow& row, bool first, bool portable, bool third)
{
    EXPECT_EQ(first, row.last.options.firstFlag);
    EXPECT_EQ(portable, row.last.options.forcePortable);
    EXPECT_EQ(third, row.last.options.thirdFlag);
}

// The three ways to hand over a record.
using Fill = void (*)(ImageRow& row, const ImageRow& source, const Options* options);
const Fill fills[] = {
    [](ImageRow& row, const ImageRow& source, const Options* options) {
        row.FillFrom(source, options);
    },
    [](ImageRow& row, const ImageRow& source, const Options* options) {
        row.FillFromWithRemap(source, map, options);
    },
    [](ImageRow& row, const ImageRow& source, const Options* options) {
        row.FillFromWithPixelRepeat(source, 1, options);
    },
};

TEST(FillOptions, AreTheDefaultsWhereNoneAreGiven)
{
    TaughtRow row;
    for (const Fill fill : fills) {
        fill(row, ImageRow(), nullptr);
        ExpectOptions(row, false, false, true);
    }
}

TEST(FillOptions, ReachTheBodyAsGiven)
{
    TaughtRow row;
    for (int bits = 0; bits != 8; ++bits) {
        Options options(bits % 2 != 0, bits / 2 % 2 != 0);
        options.thirdFlag = bits / 4 != 0;
        for (const Fill fill : fills) {
            fill(row, ImageRow(), &options);
            ExpectOptions(row, options.firstFlag, options.forcePortable, options.thirdFlag);
        }
    }
}

// A caller may derive from the record and tell an override more than its flags.
TEST(FillOptions, ReachTheBodyAsTheCallersOwnObject)
{
    struct : Options
    {
        int copies = 3;
    } const options;
    TaughtRow row;
    for (const Fill fill : fills) {
        fill(row, ImageRow(), &options);
        EXPECT_EQ(&options, row.last.record);
    }
}

TEST(FillOptions, TakeTwoFlagsInTheirOrder)
{
    TaughtRow row;
    const ImageRow source;
    for (const bool first : {false, true})
        for (const bool portable : {false, true}) {
            row.FillFrom(source, first, portable);
            EXPECT_STREQ("fill", row.last.body);
            ExpectOptions(row, first, portable, true);
            row.FillFromWithRemap(source, map, first, portable);
            EXPECT_STREQ("remap", row.last.body);
            ExpectOptions(row, first, portable, true);
            row.FillFromWithPixelRepeat(source, -4, first, portable);
            EXPECT_STREQ("repeat", row.last.body);
            ExpectOptions(row, first, portable, true);
        }
}

TEST(FillOptions, ComeWithTheCallersOwnSourceMapAndFactor)
{
    TaughtRow row;
    const ImageRow source;
    row.FillFrom(source, nullptr);
    EXPECT_EQ(&source, row.last.source);
    row.FillFromWithRemap(source, map, true, true);
    EXPECT_EQ(&source, row.last.source);
    EXPECT_EQ(map, row.last.map);
    row.FillFromWithPixelRepeat(source, 12345, nullptr);
    EXPECT_EQ(&source, row.last.source);
    EXPECT_EQ(12345, row.last.factor);
}

// One plane of 1 bit: the two roads unpack it differently, which shows the road that was taken.
class Road : public ::testing::Test
{
protected:
    static constexpr NaiveGeometry packed{16, 1, 1, true};
    static constexpr NaiveGeometry bytes{16, 1, 8, false};

    template <typename Fill>
    bool IsPortable(Fill fill)
    {
        GuardedRow source(packed, Bytes{0x80, 0x00});
        GuardedRow row(bytes, Bytes(16, 0x55));
        fill(row.row, source.row);
        const unsigned char first = row.buffer.bytes()[0];
        // A lane that is left packed holds the byte, one that is unpacked its highest bit.
        EXPECT_TRUE(first == 0x80 || first == 1) << int{first};
        return first == 0x80;
    }

    void ExpectRoad(int level, bool forcePortable, bool portable)
    {
        SCOPED_TRACE(level);
        const FakeProcessor processor(level);
        const Options options(false, forcePortable);
        for (const Fill fill : fills)
            EXPECT_EQ(portable, IsPortable([&](ImageRow& row, const ImageRow& from) {
                          fill(row, from, &options);
                      }));
        EXPECT_EQ(portable, IsPortable([&](ImageRow& row, const ImageRow& from) {
                      row.FillFrom(from, true, forcePortable);
                  }));
        EXPECT_EQ(portable, IsPortable([&](ImageRow& row, const ImageRow& from) {
                      row.FillFromWithRemap(from, map, true, forcePortable);
                  }));
        EXPECT_EQ(portable, IsPortable([&](ImageRow& row, const ImageRow& from) {
                      row.FillFromWithPixelRepeat(from, 1, true, forcePortable);
                  }));
        EXPECT_EQ(forcePortable, processor.CountQuestions() == 0);
    }
};

TEST_F(Road, IsPortableBelowTheThirdLevel)
{
    for (const int level : {-1, 0, 1, 2})
        ExpectRoad(level, false, true);
}

#ifdef PELKRAFT_VECTOR_ROAD
TEST_F(Road, IsTheVectorOneFromTheThirdLevelUp)
{
    for (const int level : {3, 4, 5, 6, 7, 100})
        if (FakeProcessor::CanReport(level))
            ExpectRoad(level, false, false);
}
#endif

TEST_F(Road, IsPortableOnDemandWithoutAskingTheProcessor)
{
    for (const int level : {0, 3, 7})
        ExpectRoad(level, true, true);
}

TEST_F(Road, CostsAFewQuestionsForEachCall)
{
    const FakeProcessor processor(0);
    GuardedRow source(bytes, 1);
    GuardedRow row(bytes, 2);
    row.row.FillFromWithPixelRepeat(source.row, 1, nullptr);
    EXPECT_GE(processor.CountQuestions(), 1);
    EXPECT_LE(processor.CountQuestions(), 3);
}

TEST(FillOptions, ChangeNothingByTheFirstAndTheThirdFlag)
{
    const NaiveGeometry from{37, 5, 16, true};
    const NaiveGeometry to{37, 5, 8, false};
    const GuardedRow source(from, 3);
    Bytes expected;
    for (int bits = 0; bits != 4; ++bits) {
        Options options(bits % 2 != 0, false);
        options.thirdFlag = bits / 2 != 0;
        GuardedRow row(to, 4);
        row.row.FillFrom(source.row, &options);
        if (bits == 0)
            expected = row.buffer.bytes();
        EXPECT_EQ(expected, row.buffer.bytes());
        EXPECT_FALSE(row.IsUntouched());
        EXPECT_TRUE(source.IsUntouched());
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
