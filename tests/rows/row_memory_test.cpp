#include "tests/rows/refusal.h"
#include "tests/rows/row_fields.h"
#include "tests/support/counted_memory.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <optional>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr int largest = std::numeric_limits<int>::max();
constexpr std::size_t firstAllocation = 0;

bool RunsOutOfMemory(const std::function<void()>& operation, CountedMemory& memory)
{
    memory.Start();
    bool failed = false;
    try {
        operation();
    } catch (const std::bad_alloc&) {
        failed = true;
    }
    memory.Stop();
    return failed;
}

TEST(RowMemory, IsOneAlignedBlockOfThePixelsAndTheTrail)
{
    for (const int width : {0, 1, 17, 1000}) {
        CountedMemory memory;
        memory.Start();
        std::optional<ImageRow> row(std::in_place, width, 3, 16, true, nullptr);
        memory.Stop();
        EXPECT_EQ(1U, memory.CountAsked());
        EXPECT_EQ(static_cast<std::size_t>(width * 6 + 64), memory.GetAllocation(0).bytes);
        EXPECT_EQ(16U, memory.GetAllocation(0).alignment);
        memory.Start();
        row.reset();
        memory.Stop();
        EXPECT_EQ(0, memory.CountHeld());
    }
}

TEST(RowMemory, IsTheTrailAloneForANegativeSize)
{
    CountedMemory memory;
    memory.Start();
    {
        const ImageRow row(-1000, 3, 16, true, nullptr);
    }
    memory.Stop();
    EXPECT_EQ(1U, memory.CountAsked());
    EXPECT_EQ(64U, memory.GetAllocation(0).bytes);
    EXPECT_EQ(0, memory.CountHeld());
}

TEST(RowMemory, IsNeverTakenForACallersBuffer)
{
    unsigned char buffer[100] = {};
    CountedMemory memory;
    memory.Start();
    {
        ImageRow row(100, 1, 8, false, buffer);
        row.SetData(buffer);
        row.SetAll(50, 1, 8, false, buffer);
        row.SetData(nullptr);
        const ImageRow copy(row);
        row.Release();
        row.Release();
    }
    memory.Stop();
    EXPECT_EQ(0U, memory.CountAsked());
    EXPECT_EQ(0, memory.CountHeld());
}

TEST(RowMemory, IsFreedOnceWhateverTakesItsPlace)
{
    unsigned char buffer[100] = {};
    CountedMemory memory;
    memory.Start();
    {
        ImageRow row(100, 1, 8, false, nullptr);
        row.SetAll(200, 1, 8, false, nullptr);
        EXPECT_EQ(1, memory.CountHeld());
        row.SetAll(100, 1, 8, false, buffer);
        EXPECT_EQ(0, memory.CountHeld());
        row.SetAll(300, 1, 8, false, nullptr);
        EXPECT_EQ(1, memory.CountHeld());
        row.Release();
        EXPECT_EQ(0, memory.CountHeld());
        row.SetAll(1, 1, 8, false, nullptr);
    }
    memory.Stop();
    EXPECT_EQ(4U, memory.CountAsked());
    EXPECT_EQ(0, memory.CountHeld());
}

TEST(RowMemory, IsTakenOnceForTheLargestGeometryOfManyUses)
{
    CountedMemory memory;
    ImageRow row(1000, 4, 16, false, nullptr);
    memory.Start();
    for (const int width : {1, 1000, 10, 999, 500})
        row.SetAll(width, 4, 16, width % 2 == 0, nullptr);
    memory.Stop();
    EXPECT_EQ(0U, memory.CountAsked());
}

TEST(RowMemory, MissingForANewRowIsBadAlloc)
{
    CountedMemory memory;
    memory.FailAt(firstAllocation);
    EXPECT_TRUE(RunsOutOfMemory([] { const ImageRow row(10, 1, 8, false, nullptr); }, memory));
    EXPECT_EQ(1U, memory.CountAsked());
    EXPECT_EQ(0, memory.CountHeld());
}

TEST(RowMemory, MissingForALargerBufferLeavesTheRowAsItWas)
{
    ImageRow row(10, 1, 8, false, nullptr);
    row.FillBuffer(0x77);
    const RowFields before = FieldsOf(row);
    CountedMemory memory;
    memory.FailAt(firstAllocation);
    EXPECT_TRUE(RunsOutOfMemory([&] { row.SetAll(20, 2, 16, true, nullptr); }, memory));
    EXPECT_EQ(0, memory.CountHeld());
    EXPECT_TRUE(before == FieldsOf(row));
    for (int i = 0; i != 10; ++i)
        EXPECT_EQ(0x77, row.GetData()[i]);
}

// Answers SetData with more than its geometry takes.
class RoomyRow : public ImageRow
{
public:
    using ImageRow::ImageRow;
    int extra = 1000;

protected:
    int CalcDataSize() const override { return ImageRow::CalcDataSize() + extra; }
};

TEST(RowMemory, MissingForSetDataLeavesTheRowAsItWas)
{
    RoomyRow row(10, 1, 8, false, nullptr);
    row.FillBuffer(0x78);
    const RowFields before = FieldsOf(row);
    CountedMemory memory;
    memory.FailAt(firstAllocation);
    EXPECT_TRUE(RunsOutOfMemory([&] { row.SetData(nullptr); }, memory));
    EXPECT_TRUE(before == FieldsOf(row));
    EXPECT_EQ(0x78, row.GetData()[9]);
}

TEST(RowMemory, IsSizedByTheOverriddenHookInSetDataAlone)
{
    CountedMemory memory;
    memory.Start();
    {
        RoomyRow row(10, 1, 8, false, nullptr);
        EXPECT_EQ(10, row.GetDataSize());
        EXPECT_EQ(10, FieldsOf(row).dataCapacity);
        row.SetData(nullptr);
        EXPECT_EQ(10, row.GetDataSize());
        EXPECT_EQ(1010, FieldsOf(row).dataCapacity);
        for (int i = 1010; i != 1074; ++i)
            EXPECT_EQ(0, row.GetData()[i]);
        row.SetAll(20, 1, 8, false, nullptr);
        EXPECT_EQ(1020, FieldsOf(row).dataCapacity);
    }
    memory.Stop();
    EXPECT_EQ(3U, memory.CountAsked());
    EXPECT_EQ(74U, memory.GetAllocation(0).bytes);
    EXPECT_EQ(1074U, memory.GetAllocation(1).bytes);
    EXPECT_EQ(1084U, memory.GetAllocation(2).bytes);
    EXPECT_EQ(0, memory.CountHeld());
}

TEST(RowMemory, IsKnownByTheOverriddenHookForACallersBufferToo)
{
    unsigned char buffer[1020] = {};
    RoomyRow row;
    row.SetAll(20, 1, 8, false, buffer);
    EXPECT_EQ(1020, FieldsOf(row).dataCapacity);
}

struct Geometry
{
    int width;
    int channels;
    int bits;
    bool planar;
};

// The true sizes of these don't fit 32 bits; what is left of them is 0, negative or small.
constexpr Geometry tooLarge[] = {
    {65536, 65536, 8, false},     {65537, 65536, 8, false},           {65536, 32768, 8, false},
    {1 << 20, 1 << 10, 16, true}, {largest, largest, largest, false}, {1, 1, largest, false},
    {largest, 2, 8, true},        {-65536, 65537, 8, false}};

int WrappedSize(const Geometry& geometry)
{
    return ImageRow::CalcBufferSize(geometry.width, geometry.channels, geometry.bits,
                                    geometry.planar);
}

TEST(RowMemory, IsNeverTakenForASizeThatDoesNotFit)
{
    for (const Geometry& large : tooLarge) {
        SCOPED_TRACE(large.width);
        CountedMemory memory;
        EXPECT_TRUE(RunsOutOfMemory(
            [&] {
                const ImageRow row(large.width, large.channels, large.bits, large.planar, nullptr);
            },
            memory));
        EXPECT_EQ(0U, memory.CountAsked());
        EXPECT_EQ(0, memory.CountHeld());
    }
}

TEST(RowMemory, IsKeptWhereALargerSizeDoesNotFit)
{
    for (const Geometry& large : tooLarge) {
        SCOPED_TRACE(large.width);
        ImageRow row(100, 1, 8, false, nullptr);
        row.FillBuffer(0x79);
        const RowFields before = FieldsOf(row);
        CountedMemory memory;
        const bool failed = RunsOutOfMemory(
            [&] { row.SetAll(large.width, large.channels, large.bits, large.planar, nullptr); },
            memory);
        // A size that wraps to less than the row holds asks for no memory.
        EXPECT_EQ(WrappedSize(large) > 100, failed);
        EXPECT_EQ(0U, memory.CountAsked());
        EXPECT_EQ(failed, before == FieldsOf(row));
        EXPECT_EQ(before.data, row.GetData());
        EXPECT_EQ(100, FieldsOf(row).dataCapacity);
        EXPECT_EQ(0x79, row.GetData()[99]);
    }
}

// A conversion serves these, so that no buffer may stand for one that the wrapped size is too
// small for.
TEST(RowMemory, IsNeverTakenOrKeptForAPlaneWhoseBitsWrap)
{
    unsigned char buffer[100] = {};
    for (const int width : {1 << 28, (1 << 28) + 1, largest})
        for (const int bits : {8, 16}) {
            if (bits == 16 && width == largest)
                continue;
            SCOPED_TRACE(testing::Message() << width << " of " << bits);
            EXPECT_EQ(outOfMemory,
                      EndOf([&] { const ImageRow row(width, 1, bits, true, nullptr); }));
            ImageRow owning(100, 1, 8, false, nullptr);
            ImageRow wrapping(100, 1, 8, false, buffer);
            ImageRow empty;
            for (ImageRow* const row : {&owning, &wrapping, &empty}) {
                const RowFields before = FieldsOf(*row);
                EXPECT_EQ(outOfMemory, EndOf([&] { row->SetAll(width, 1, bits, true, nullptr); }));
                EXPECT_TRUE(before == FieldsOf(*row));
            }
            // The caller's own buffer for this very size is kept.
            wrapping.SetAll(width, 1, bits, true, buffer);
            EXPECT_EQ(returned, EndOf([&] { wrapping.SetData(nullptr); }));
            EXPECT_EQ(buffer, wrapping.GetData());
        }
}

TEST(RowMemory, OfAnEmptyRowIsNotTakenForASizeThatWrapsToNothing)
{
    ImageRow row;
    const RowFields before = FieldsOf(row);
    EXPECT_EQ(outOfMemory, EndOf([&] { row.SetAll(65536, 65536, 8, false, nullptr); }));
    EXPECT_TRUE(before == FieldsOf(row));
}

// Refuses every buffer.
class StubbornRow : public ImageRow
{
public:
    using ImageRow::ImageRow;
    void SetData(unsigned char*) override { throw "no buffer"; }
};

TEST(SetAll, RestoresTheGeometryWhateverAnOverrideThrows)
{
    StubbornRow row(10, 1, 8, false, nullptr);
    const RowFields before = FieldsOf(row);
    EXPECT_EQ("no buffer", EndOf([&] { row.SetAll(20, 2, 16, true, nullptr); }));
    EXPECT_TRUE(before == FieldsOf(row));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
