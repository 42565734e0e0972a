#include "portal/offset_table.h"
#include "tests/support/thrown_text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const char* invalidIndex = "zvk::Pelkraft::OffsetTable::SetEntry invalid index";

// The memory has room for two entries at 320 and for blocks after them.
using Memory = std::array<unsigned char, 512>;

std::uint64_t NumberAt(const Memory& memory, std::size_t offset)
{
    std::uint64_t number = 0;
    std::memcpy(&number, memory.data() + offset, sizeof number);
    return number;
}

TEST(OffsetTable, CountsBlocksInSixteens)
{
    OffsetTable table(4, 320);
    EXPECT_EQ(384U, table.GetEnd());
    table.SetEntry(nullptr, 0);
    EXPECT_EQ(384U, table.GetEnd());
    table.SetEntry(nullptr, 1);
    EXPECT_EQ(400U, table.GetEnd());
    table.SetEntry(nullptr, 16);
    EXPECT_EQ(416U, table.GetEnd());
    table.SetEntry(nullptr, 17);
    EXPECT_EQ(448U, table.GetEnd());
}

TEST(OffsetTable, WritesTheOffsetAndTheSizeAskedFor)
{
    Memory memory{};
    OffsetTable table(2, 320);
    table.SetEntry(memory.data(), 17);
    table.SetEntry(memory.data(), 5);
    EXPECT_EQ(352U, NumberAt(memory, 320));
    EXPECT_EQ(17U, NumberAt(memory, 328));
    EXPECT_EQ(384U, NumberAt(memory, 336));
    EXPECT_EQ(5U, NumberAt(memory, 344));
    EXPECT_EQ(400U, table.GetEnd());
    EXPECT_EQ(memory.data() + 352, table.GetBlock(memory.data(), 0));
    EXPECT_EQ(memory.data() + 384, table.GetBlock(memory.data(), 1));
}

TEST(OffsetTable, ReadsAnEmptyBlockAsNull)
{
    Memory memory;
    memory.fill(0xFF);
    OffsetTable table(2, 320);
    table.SetEntry(memory.data(), 0);
    table.SetEntry(memory.data(), 8);
    EXPECT_EQ(0U, NumberAt(memory, 320));
    EXPECT_EQ(0U, NumberAt(memory, 328));
    EXPECT_EQ(nullptr, table.GetBlock(memory.data(), 0));
    EXPECT_EQ(memory.data() + 352, table.GetBlock(memory.data(), 1));
}

TEST(OffsetTable, WritesAfterCountingWhereItCounted)
{
    Memory memory{};
    OffsetTable table(2, 320);
    table.SetEntry(nullptr, 33);
    table.SetEntry(nullptr, 1);
    const std::uint64_t counted = table.GetEnd();
    table.Rewind();
    table.SetEntry(memory.data(), 33);
    table.SetEntry(memory.data(), 1);
    EXPECT_EQ(counted, table.GetEnd());
    EXPECT_EQ(352U, NumberAt(memory, 320));
    EXPECT_EQ(400U, NumberAt(memory, 336));
}

TEST(OffsetTable, RefusesAnEntryBeyondTheLast)
{
    Memory memory{};
    OffsetTable counting(2, 320);
    counting.SetEntry(nullptr, 1);
    counting.SetEntry(nullptr, 1);
    EXPECT_EQ(invalidIndex, TextOf([&] { counting.SetEntry(nullptr, 1); }));

    OffsetTable writing(2, 320);
    writing.SetEntry(memory.data(), 1);
    writing.SetEntry(memory.data(), 1);
    const Memory before = memory;
    EXPECT_EQ(invalidIndex, TextOf([&] { writing.SetEntry(memory.data(), 1); }));
    EXPECT_EQ(before, memory);
    EXPECT_EQ(invalidIndex, TextOf([&] { writing.GetBlock(memory.data(), 2); }));
    EXPECT_EQ(invalidIndex, TextOf([&] { writing.GetBlock(memory.data(), 1U << 31); }));
}

TEST(OffsetTable, WithoutEntriesRefusesEach)
{
    Memory memory{};
    OffsetTable table(0, 320);
    EXPECT_EQ(320U, table.GetEnd());
    EXPECT_EQ(invalidIndex, TextOf([&] { table.SetEntry(nullptr, 0); }));
    EXPECT_EQ(invalidIndex, TextOf([&] { table.GetBlock(memory.data(), 0); }));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
