#include "tests/rows/own_size_row.h"

#include <gtest/gtest.h>

#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Bytes of this geometry: 2^32, of which 0 are left.
constexpr int side = 1 << 16;

TEST(OwnSize, IsAllocatedWhateverTheGeometrySays)
{
    OwnSizeRow row(100);
    row.SetAll(side, side, 8, false, nullptr);
    ASSERT_NE(row.GetData(), nullptr);
    row.FillBuffer(0x5A);
    for (int i = 0; i != 100; ++i)
        EXPECT_EQ(0x5A, row.GetData()[i]) << i;
    for (int i = 0; i != ImageRow::SafetyTrail; ++i)
        EXPECT_EQ(0, row.GetData()[100 + i]) << i;
}

TEST(OwnSize, DecidesWhetherTheBufferIsKept)
{
    OwnSizeRow row(100);
    row.SetAll(3, 1, 8, false, nullptr);
    const unsigned char* first = row.GetData();
    ASSERT_NE(first, nullptr);
    row.SetAll(1000, 1, 8, false, nullptr);
    EXPECT_EQ(first, row.GetData());
}

TEST(OwnSize, IsRefusedWhereItIsTheOneThatIsLeft)
{
    OwnSizeRow row(0);
    EXPECT_THROW(row.SetAll(side, side, 8, false, nullptr), std::bad_alloc);
    EXPECT_EQ(0, row.GetWidth());
    EXPECT_EQ(nullptr, row.GetData());
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
