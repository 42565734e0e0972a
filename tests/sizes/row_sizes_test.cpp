#include "tests/rows/own_size_row.h"
#include "tests/rows/refusal.h"
#include "tests/rows/row_fields.h"
#include "tests/sizes/limited_memory.h"
#include "tests/sizes/numbers.h"
#include "tests/sizes/wide_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <limits>
#include <new>

// Rows of any numbers, which take as much memory as they say or none.
namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int depths[] = {1, 2, 8, 10, 16, 0, 7, -1, -8, 1 << 15, 1 << 30, largest, smallest};

// Long enough for a product of three numbers to be told from one of 32 bits.
long double ExactSize(const NaiveGeometry& row)
{
    const long double bits = row.bits;
    if (!row.planar)
        return std::trunc((bits + 7) / 8) * row.channels * row.width;
    return std::trunc((bits * row.width + 7) / 8) * row.channels;
}

int SizeOf(const NaiveGeometry& row)
{
    return ImageRow::CalcBufferSize(row.width, row.channels, row.bits, row.planar);
}

enum class Room
{
    Given,
    Lacking,
};

// A row of this geometry asks for its true size, or for the trail alone if that is negative.
Room RoomFor(const NaiveGeometry& row)
{
    const bool isTrue = ExactSize(row) == static_cast<long double>(SizeOf(row));
    const auto bytes = static_cast<std::size_t>(std::max(SizeOf(row), 0));
    return isTrue && bytes + ImageRow::SafetyTrail <= memoryLimit ? Room::Given : Room::Lacking;
}

void ExpectOwned(const ImageRow& row, int size)
{
    ASSERT_NE(nullptr, row.GetData());
    EXPECT_EQ(size, FieldsOf(row).dataCapacity);
    const unsigned char* const trail = row.GetData() + std::max(size, 0);
    EXPECT_TRUE(std::all_of(trail, trail + ImageRow::SafetyTrail,
                            [](unsigned char byte) { return byte == 0; }));
}

std::string NewRow(const NaiveGeometry& asked)
{
    return EndOf([&] {
        const ImageRow row(asked.width, asked.channels, asked.bits, asked.planar, nullptr);
        ExpectOwned(row, SizeOf(asked));
    });
}

// The true size would be served, but not the buffer that the wrapped one is small enough for.
bool HidesItsSize(const NaiveGeometry& row)
{
    const long double exact = ExactSize(row);
    return row.width >= 0 && row.channels >= 0 && row.bits > 0 && row.bits <= 16 &&
           exact <= largest && exact != static_cast<long double>(SizeOf(row));
}

// From an empty row, and from one that holds something.
std::string ResizedRow(const NaiveGeometry& asked, int oldWidth)
{
    ImageRow row;
    if (oldWidth != 0)
        row.SetAll(oldWidth, 1, 8, false, nullptr);
    const RowFields before = FieldsOf(row);
    std::string end =
        EndOf([&] { row.SetAll(asked.width, asked.channels, asked.bits, asked.planar, nullptr); });
    if (end == outOfMemory)
        EXPECT_TRUE(before == FieldsOf(row));
    else if (SizeOf(asked) > before.dataCapacity)
        ExpectOwned(row, SizeOf(asked));
    else
        EXPECT_EQ(before.data, row.GetData());
    row.FillBuffer(largest);
    row.Release();
    EXPECT_EQ(-1, FieldsOf(row).dataCapacity);
    return end;
}

TEST(RowSizes, AreAllocatedAsTheyAreOrNotAtAll)
{
    const LimitedMemory limited;
    std::uint64_t given = 0;
    std::uint64_t lacking = 0;
    for (const NaiveGeometry& asked : AllGeometries(depths)) {
        SCOPED_TRACE(testing::Message() << asked.width << " x " << asked.channels << " x "
                                        << asked.bits << (asked.planar ? " planar" : ""));
        const bool isGiven = RoomFor(asked) == Room::Given;
        const std::string end = isGiven ? returned : outOfMemory;
        ++(isGiven ? given : lacking);
        EXPECT_EQ(end, NewRow(asked));
        for (const int oldWidth : {0, 100}) {
            const int oldCapacity = oldWidth == 0 ? -1 : oldWidth;
            // A buffer that is large enough is kept, also for a size that no conversion serves.
            const bool isKept = SizeOf(asked) <= oldCapacity && !HidesItsSize(asked);
            EXPECT_EQ(isKept ? returned : end, ResizedRow(asked, oldWidth));
        }
    }
    std::printf("%" PRIu64 " rows with memory of any size\n", given);
    std::printf("%" PRIu64 " rows without memory of any size\n", lacking);
    EXPECT_GT(given, 100U);
    EXPECT_GT(lacking, 100U);
}

TEST(RowSizes, AreAnsweredWithoutALookAtTheMemory)
{
    const WideMemory forbidden(WideMemory::window, WideMemory::Forbidden);
    for (const NaiveGeometry& asked : AllGeometries(depths)) {
        ImageRow row(asked.width, asked.channels, asked.bits, asked.planar, forbidden.Last(1));
        EXPECT_EQ(SizeOf(asked), row.GetDataSize());
        EXPECT_EQ(SizeOf(asked), FieldsOf(row).dataCapacity);
        EXPECT_EQ(asked.width, row.GetWidth());
        EXPECT_EQ(asked.channels, row.GetChannels());
        EXPECT_EQ(asked.bits, row.GetBits());
        if (asked.planar)
            EXPECT_EQ(ImageRow::CalcBufferSize(asked.width, 1, asked.bits, true),
                      row.CalcPlaneSize());
        else
            EXPECT_NE(returned, EndOf([&] { (void)row.CalcPlaneSize(); }));
        // Its own size is what it is known to hold.
        row.SetData(nullptr);
        EXPECT_EQ(forbidden.Last(1), row.GetData());
        const ImageRow copy(row);
        EXPECT_EQ(SizeOf(asked), copy.GetDataSize());
        row.SetData(forbidden.Last(2));
        EXPECT_EQ(SizeOf(asked), FieldsOf(row).dataCapacity);
    }
}

TEST(RowSizes, OfADerivedRowAreAllocatedAsItAnswers)
{
    const LimitedMemory limited;
    for (const int size : sizeNumbers) {
        OwnSizeRow row(size);
        const bool isKept = size <= -1;
        const bool isGiven = size < static_cast<int>(memoryLimit) - ImageRow::SafetyTrail;
        EXPECT_EQ(isGiven ? returned : outOfMemory,
                  EndOf([&] { row.SetAll(3, 2, 8, true, nullptr); }))
            << size;
        if (isGiven && !isKept)
            ExpectOwned(row, size);
        row.FillBuffer(1);
    }
}

// This needs addresses, but hardly memory: only the trail and what the test writes are touched.
TEST(RowSizes, ReachUpToTheLargestNumber)
{
    try {
        ImageRow row(largest, 1, 8, false, nullptr);
        ExpectOwned(row, largest);
        row.GetData()[largest - 1] = 1;
        row.SetAll(1, 1, 16, true, nullptr);
        EXPECT_EQ(1, row.GetData()[largest - 1]);
    } catch (const std::bad_alloc&) {
        EXPECT_EQ(4U, sizeof(void*));
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
