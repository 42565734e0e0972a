#include "tests/rows/row_fields.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int trailBytes = 64;

std::vector<unsigned char> BytesOf(const ImageRow& row, int first, int count)
{
    return {row.GetData() + first, row.GetData() + first + count};
}

const std::vector<unsigned char> zeroTrail(trailBytes, 0);

void ExpectEmpty(const ImageRow& row)
{
    const RowFields fields = FieldsOf(row);
    EXPECT_EQ(0, fields.width);
    EXPECT_EQ(0, fields.channels);
    EXPECT_EQ(0, fields.bits);
    EXPECT_FALSE(fields.planar);
    EXPECT_FALSE(fields.ownsData);
    EXPECT_EQ(nullptr, fields.data);
    EXPECT_EQ(-1, fields.dataCapacity);
}

void ExpectOwning(const ImageRow& row, int capacity)
{
    const RowFields fields = FieldsOf(row);
    EXPECT_TRUE(fields.ownsData);
    ASSERT_NE(nullptr, fields.data);
    EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(fields.data) % 16);
    EXPECT_EQ(capacity, fields.dataCapacity);
}

void ExpectWrapping(const ImageRow& row, const unsigned char* data, int capacity)
{
    const RowFields fields = FieldsOf(row);
    EXPECT_FALSE(fields.ownsData);
    EXPECT_EQ(data, fields.data);
    EXPECT_EQ(capacity, fields.dataCapacity);
}

TEST(ImageRow, IsEmptyAtFirst)
{
    const ImageRow row;
    ExpectEmpty(row);
    EXPECT_EQ(nullptr, row.GetData());
    EXPECT_EQ(0, row.GetWidth());
    EXPECT_EQ(0, row.GetChannels());
    EXPECT_EQ(0, row.GetBits());
    EXPECT_EQ(0, row.GetDataSize());
    EXPECT_FALSE(row.IsPlanar());
}

TEST(ImageRow, AnswersItsGeometryAsGivenHoweverStrange)
{
    unsigned char byte = 0;
    const ImageRow row(-3, 77, 4, true, &byte);
    EXPECT_EQ(-3, row.GetWidth());
    EXPECT_EQ(77, row.GetChannels());
    EXPECT_EQ(4, row.GetBits());
    EXPECT_TRUE(row.IsPlanar());
    EXPECT_EQ(&byte, row.GetData());
}

TEST(ImageRow, AllocatesAlignedPixelsAndAZeroTrailForItself)
{
    for (const int width : {0, 1, 15, 16, 17, 100, 1000}) {
        const ImageRow row(width, 1, 8, false, nullptr);
        ExpectOwning(row, width);
        EXPECT_EQ(zeroTrail, BytesOf(row, width, trailBytes)) << width;
    }
}

TEST(ImageRow, AllocatesTheTrailAloneForANegativeSize)
{
    const ImageRow row(-5, 1, 8, false, nullptr);
    ExpectOwning(row, -5);
    EXPECT_EQ(zeroTrail, BytesOf(row, 0, trailBytes));
}

TEST(ImageRow, WrapsABufferAtAnyAddress)
{
    std::vector<unsigned char> buffer(200, 0x5A);
    ImageRow row(50, 2, 16, true, buffer.data() + 1);
    ExpectWrapping(row, buffer.data() + 1, 200);
    row.Release();
    EXPECT_EQ(std::vector<unsigned char>(200, 0x5A), buffer);
}

TEST(ImageRow, TakesABufferInPlaceOfItsOwn)
{
    std::vector<unsigned char> buffer(20, 7);
    ImageRow row(20, 1, 8, false, nullptr);
    row.SetData(buffer.data());
    ExpectWrapping(row, buffer.data(), 20);
    EXPECT_EQ(std::vector<unsigned char>(20, 7), buffer);
}

TEST(ImageRow, TakesAnotherBufferInPlaceOfTheCallers)
{
    std::vector<unsigned char> first(40, 1);
    std::vector<unsigned char> second(10, 2);
    ImageRow row(40, 1, 8, false, first.data());
    row.SetAll(10, 1, 8, true, second.data());
    ExpectWrapping(row, second.data(), 10);
    EXPECT_EQ(10, row.GetWidth());
    EXPECT_TRUE(row.IsPlanar());
    EXPECT_EQ(std::vector<unsigned char>(40, 1), first);
}

TEST(ImageRow, KeepsItsBufferWhenShrunk)
{
    ImageRow row(100, 1, 8, false, nullptr);
    unsigned char* const data = row.GetData();
    row.FillBuffer(0x11);
    row.SetAll(40, 2, 8, true, nullptr);
    ExpectOwning(row, 100);
    EXPECT_EQ(data, row.GetData());
    EXPECT_EQ(80, row.GetDataSize());
    EXPECT_EQ(40, row.GetWidth());
    EXPECT_EQ(2, row.GetChannels());
    EXPECT_TRUE(row.IsPlanar());
    // Old pixels stand after the new size: no trail is written there.
    EXPECT_EQ(std::vector<unsigned char>(20, 0x11), BytesOf(row, 80, 20));
    EXPECT_EQ(zeroTrail, BytesOf(row, 100, trailBytes));
}

TEST(ImageRow, FillsAllThatItsBufferHoldsAfterShrinking)
{
    ImageRow row(100, 1, 8, false, nullptr);
    row.SetAll(10, 1, 8, false, nullptr);
    row.FillBuffer(0x22);
    EXPECT_EQ(std::vector<unsigned char>(100, 0x22), BytesOf(row, 0, 100));
    EXPECT_EQ(zeroTrail, BytesOf(row, 100, trailBytes));
}

TEST(ImageRow, KeepsItsBufferAtTheVerySameSize)
{
    ImageRow row(100, 1, 8, false, nullptr);
    row.FillBuffer(0x33);
    const RowFields before = FieldsOf(row);
    row.SetData(nullptr);
    EXPECT_TRUE(before == FieldsOf(row));
    EXPECT_EQ(std::vector<unsigned char>(100, 0x33), BytesOf(row, 0, 100));
}

TEST(ImageRow, GrowsIntoALargerBufferWithATrailOfItsOwn)
{
    ImageRow row(10, 1, 8, false, nullptr);
    row.SetAll(11, 1, 8, false, nullptr);
    ExpectOwning(row, 11);
    EXPECT_EQ(zeroTrail, BytesOf(row, 11, trailBytes));
    row.SetAll(11, 3, 16, true, nullptr);
    ExpectOwning(row, 66);
    EXPECT_EQ(zeroTrail, BytesOf(row, 66, trailBytes));
}

TEST(ImageRow, KeepsACallersBufferThatIsLargeEnough)
{
    std::vector<unsigned char> buffer(100, 9);
    ImageRow row(100, 1, 8, false, buffer.data());
    row.SetAll(50, 1, 8, false, nullptr);
    ExpectWrapping(row, buffer.data(), 100);
    row.SetAll(100, 1, 8, false, nullptr);
    ExpectWrapping(row, buffer.data(), 100);
}

TEST(ImageRow, LeavesACallersBufferThatIsTooSmall)
{
    std::vector<unsigned char> buffer(100, 9);
    ImageRow row(100, 1, 8, false, buffer.data());
    row.SetAll(101, 1, 8, false, nullptr);
    ExpectOwning(row, 101);
    EXPECT_NE(buffer.data(), row.GetData());
    row.FillBuffer(1);
    EXPECT_EQ(std::vector<unsigned char>(100, 9), buffer);
}

TEST(ImageRow, AllocatesForAnySizeButANegativeOneWhenEmpty)
{
    ImageRow row;
    row.SetData(nullptr);
    ExpectOwning(row, 0);
    EXPECT_EQ(zeroTrail, BytesOf(row, 0, trailBytes));

    ImageRow negative;
    negative.SetAll(-1, 1, 8, false, nullptr);
    EXPECT_EQ(nullptr, negative.GetData());
    EXPECT_EQ(-1, negative.GetWidth());
    EXPECT_EQ(-1, FieldsOf(negative).dataCapacity);
}

TEST(ImageRow, GrowsFromALargerNegativeCapacityToASmallerOne)
{
    ImageRow row(-5, 1, 8, false, nullptr);
    row.SetAll(-3, 1, 8, false, nullptr);
    ExpectOwning(row, -3);
    EXPECT_EQ(zeroTrail, BytesOf(row, 0, trailBytes));
}

TEST(ImageRow, IsEmptyAgainOnceReleased)
{
    ImageRow owning(100, 3, 16, true, nullptr);
    owning.Release();
    ExpectEmpty(owning);
    owning.Release();
    ExpectEmpty(owning);

    std::vector<unsigned char> buffer(30, 4);
    ImageRow wrapping(30, 1, 8, true, buffer.data());
    wrapping.Release();
    ExpectEmpty(wrapping);
    EXPECT_EQ(std::vector<unsigned char>(30, 4), buffer);
    wrapping.SetAll(5, 1, 8, false, nullptr);
    ExpectOwning(wrapping, 5);
}

TEST(FillBuffer, WritesTheLowByteAndLeavesTheTrail)
{
    ImageRow row(25, 4, 8, false, nullptr);
    for (const int value : {0x1AB, 0xFF, 0, -1, 0x7FFFFF80}) {
        row.FillBuffer(value);
        const auto byte = static_cast<unsigned char>(static_cast<unsigned>(value) & 0xFF);
        EXPECT_EQ(std::vector<unsigned char>(100, byte), BytesOf(row, 0, 100)) << value;
        EXPECT_EQ(zeroTrail, BytesOf(row, 100, trailBytes)) << value;
    }
}

TEST(FillBuffer, FillsACapacityOfOneByte)
{
    unsigned char bytes[] = {9, 9};
    ImageRow row(1, 1, 8, false, bytes);
    row.FillBuffer(1);
    EXPECT_EQ(1, bytes[0]);
    EXPECT_EQ(9, bytes[1]);
}

TEST(FillBuffer, DoesNothingWithoutACapacity)
{
    ImageRow empty;
    empty.FillBuffer(1);
    ExpectEmpty(empty);

    unsigned char byte = 9;
    ImageRow zero(0, 4, 8, false, &byte);
    zero.FillBuffer(1);
    ImageRow negative(-10, 4, 8, false, &byte);
    negative.FillBuffer(1);
    EXPECT_EQ(9, byte);
    ImageRow owning(-10, 4, 8, false, nullptr);
    owning.FillBuffer(1);
    EXPECT_EQ(zeroTrail, BytesOf(owning, 0, trailBytes));
}

// Every state, then every way to go on, against the rules told one by one.
TEST(ImageRow, GrowsOnlyAndFreesOnlyItsOwn)
{
    std::vector<unsigned char> buffer(64);
    for (const int firstWidth : {0, 1, 20, 64})
        for (const int nextWidth : {0, 1, 19, 20, 21, 64, 65})
            for (const bool wraps : {false, true}) {
                ImageRow row(firstWidth, 1, 8, false, wraps ? buffer.data() : nullptr);
                const RowFields before = FieldsOf(row);
                row.SetAll(nextWidth, 1, 8, false, nullptr);
                const RowFields after = FieldsOf(row);
                const bool grows = nextWidth > firstWidth;
                EXPECT_EQ(grows || !wraps, after.ownsData);
                EXPECT_EQ(std::max(firstWidth, nextWidth), after.dataCapacity);
                EXPECT_EQ(!grows, after.data == before.data);
                EXPECT_EQ(nextWidth, after.width);
            }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
