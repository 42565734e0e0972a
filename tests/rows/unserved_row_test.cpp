#include "tests/rows/guarded_row.h"
#include "tests/rows/refusal.h"
#include "tests/support/words.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

// Rows that pass every check of their own and still have no way between them.
namespace zvk::Pelkraft::TestSupport {
namespace {

using namespace Words;
constexpr int anyMap[] = {0, 1, 0, 1, 0, 1, 0, 1, 0, 1};

using Fill = std::function<void(ImageRow& row, const ImageRow& source, bool portable)>;

Fill PlainFill()
{
    return [](ImageRow& row, const ImageRow& source, bool portable) {
        row.FillFrom(source, false, portable);
    };
}

Fill Remap(const int* map)
{
    return [map](ImageRow& row, const ImageRow& source, bool portable) {
        row.FillFromWithRemap(source, map, false, portable);
    };
}

Fill Repeat(int factor)
{
    return [factor](ImageRow& row, const ImageRow& source, bool portable) {
        row.FillFromWithPixelRepeat(source, factor, false, portable);
    };
}

// On both roads, with every byte of both rows as it was.
void ExpectEnd(const std::string& end, const NaiveGeometry& from, const NaiveGeometry& to,
               const Fill& fill)
{
    for (const bool portable : {false, true}) {
        SCOPED_TRACE(Describe(from) + " to " + Describe(to));
        const GuardedRow source(from, 11);
        GuardedRow row(to, 12);
        EXPECT_EQ(end, EndOf([&] { fill(row.row, source.row, portable); }));
        EXPECT_TRUE(row.IsUntouched());
        EXPECT_TRUE(source.IsUntouched());
    }
}

TEST(UnservedRow, IsOneOfBytesForOneOfPackedBitsAndBack)
{
    for (const int bits : {1, 2})
        for (const int width : {0, 1, 16, 100})
            for (const bool packedFirst : {false, true}) {
                const NaiveGeometry from{width, 2, bits, packedFirst};
                const NaiveGeometry to{width, 2, bits, !packedFirst};
                ExpectEnd(unsupported, from, to, PlainFill());
                ExpectEnd(unsupported, from, to, Remap(anyMap));
                for (const int factor : {1, 2, 4, -1, -2, -4})
                    ExpectEnd(unsupported, from, to, Repeat(factor));
            }
}

TEST(UnservedRow, IsOnePlanarOfDepthTen)
{
    const NaiveGeometry planar{21, 2, 10, true};
    const NaiveGeometry interleaved{21, 2, 10, false};
    for (const auto& [from, to] : {std::pair{planar, planar}, std::pair{planar, interleaved},
                                   std::pair{interleaved, planar}}) {
        ExpectEnd(unsupported, from, to, PlainFill());
        ExpectEnd(unsupported, from, to, Remap(anyMap));
    }
    for (const int factor : {1, 2, 4, -1, -2, -4})
        ExpectEnd(unsupported, interleaved, planar, Repeat(factor));
}

TEST(UnservedRow, IsASourceWithoutChannels)
{
    for (const int bits : {8, 16})
        for (const bool planar : {false, true})
            ExpectEnd(unsupported, {20, 0, bits, planar}, {20, 2, 8, planar}, Remap(anyMap));
    ExpectEnd(unsupported, {20, 0, 1, true}, {20, 2, 8, false}, Remap(anyMap));
    ExpectEnd(unsupported, {0, 0, 8, true}, {0, 2, 8, false}, Remap(anyMap));
}

TEST(DestinationWithoutChannels, IsDoneAtOnce)
{
    for (const int bits : {8, 16})
        for (const bool planar : {false, true}) {
            const NaiveGeometry empty{20, 0, bits, planar};
            ExpectEnd(returned, {20, 0, 8, false}, empty, PlainFill());
            ExpectEnd(returned, {20, 0, 16, true}, empty, Repeat(-4));
            ExpectEnd(returned, {20, 3, 8, false}, empty, Remap(anyMap));
            ExpectEnd(returned, {20, 3, 8, true}, empty, Remap(nullptr));
        }
    ExpectEnd(returned, {20, 0, 2, true}, {20, 0, 2, true}, Repeat(2));
}

TEST(DestinationWithoutChannels, StillHasToBeOfAFormThatIsServed)
{
    ExpectEnd(unsupported, {20, 3, 1, false}, {20, 0, 8, false}, Remap(anyMap));
    ExpectEnd(depth, {20, 0, 4, false}, {20, 0, 8, false}, PlainFill());
}

TEST(NullMap, IsRefusedForAnyDestinationWithChannels)
{
    for (const NaiveGeometry& from :
         {NaiveGeometry{20, 2, 8, false}, NaiveGeometry{20, 2, 16, true},
          NaiveGeometry{20, 2, 1, true}, NaiveGeometry{0, 2, 8, false}})
        for (const NaiveGeometry& to :
             {NaiveGeometry{20, 2, 8, true}, NaiveGeometry{20, 3, 16, false},
              NaiveGeometry{20, 1, 2, true}, NaiveGeometry{0, 2, 8, false}})
            ExpectEnd(remap, from, to, Remap(nullptr));
}

TEST(NullMap, IsToldAfterTheFormsOfTheRows)
{
    ExpectEnd(unsupported, {20, 2, 1, false}, {20, 2, 8, false}, Remap(nullptr));
    ExpectEnd(unsupported, {20, 2, 1, true}, {20, 2, 1, false}, Remap(nullptr));
    ExpectEnd(unsupported, {20, 2, 10, true}, {20, 2, 10, true}, Remap(nullptr));
    ExpectEnd(unsupported, {20, 0, 8, false}, {20, 2, 8, false}, Remap(nullptr));
    ExpectEnd(depth, {20, 2, 3, false}, {20, 2, 8, false}, Remap(nullptr));
}

// A map may change the number of channels, which a fill and a repeat may not.
TEST(ChannelMismatch, IsRefusedButForAMap)
{
    ExpectEnd(fill, {20, 2, 8, false}, {20, 3, 8, false}, PlainFill());
    ExpectEnd(repeat, {20, 2, 8, false}, {20, 3, 8, false}, Repeat(1));
    const GuardedRow source({20, 2, 8, false}, 1);
    GuardedRow row({20, 3, 8, true}, 2);
    EXPECT_EQ(returned, EndOf([&] { row.row.FillFromWithRemap(source.row, anyMap, nullptr); }));
    EXPECT_FALSE(row.IsUntouched());
}

// No caller can see from the geometry that the row kept a small buffer for a size that wraps.
TEST(UnservedRow, IsOneWhoseSizeWrapsIntoItsBuffer)
{
    ImageRow row(100, 1, 8, false, nullptr);
    row.FillBuffer(0x66);
    row.SetAll(65536, 65536, 8, false, nullptr);
    ASSERT_EQ(0, row.GetDataSize());
    const Bytes content(65536);
    const ImageRow source(1, 65536, 8, true, const_cast<unsigned char*>(content.data()));
    EXPECT_EQ(width, EndOf([&] { row.FillFrom(source, nullptr); }));
    EXPECT_EQ(0x66, row.GetData()[0]);
    EXPECT_EQ(0x66, row.GetData()[99]);
}

TEST(RowFilledFromItself, StaysAsItIs)
{
    for (const bool planar : {false, true})
        for (const int bits : {1, 8, 16})
            for (const bool portable : {false, true}) {
                // 40 pixels end at a byte's end at every depth.
                GuardedRow row({40, 5, bits, planar}, 13);
                row.row.FillFrom(row.row, false, portable);
                EXPECT_TRUE(row.IsUntouched());
            }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
