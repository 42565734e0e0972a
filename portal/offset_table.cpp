#include "portal/offset_table.h"

#include "common/units.h"

#include <cstring>

namespace zvk::Pelkraft {
namespace {

constexpr const char* invalidIndex = "zvk::Pelkraft::OffsetTable::SetEntry invalid index";

// An entry stands so in the buffer. Offset 0 is an empty block.
struct Entry
{
    std::uint64_t offset;
    std::uint64_t size;
};

} // namespace

OffsetTable::OffsetTable(std::uint64_t newEntryCount, std::uint64_t newTableOffset)
    : entryCount(newEntryCount), tableOffset(newTableOffset)
{
    Rewind();
}

void OffsetTable::SetEntry(unsigned char* data, std::uint64_t bytes)
{
    if (nextEntry >= entryCount)
        throw invalidIndex;
    if (data != nullptr) {
        const Entry entry{bytes != 0 ? cursor : 0, bytes};
        std::memcpy(data + EntryOffset(nextEntry), &entry, sizeof entry);
    }
    ++nextEntry;
    cursor += RoundUpToUnit(bytes);
}

void OffsetTable::Rewind()
{
    nextEntry = 0;
    cursor = EntryOffset(entryCount);
}

unsigned char* OffsetTable::GetBlock(unsigned char* data, std::uint64_t index) const
{
    if (index >= entryCount)
        throw invalidIndex;
    Entry entry;
    std::memcpy(&entry, data + EntryOffset(index), sizeof entry);
    return entry.offset != 0 ? data + entry.offset : nullptr;
}

std::uint64_t OffsetTable::EntryOffset(std::uint64_t index) const
{
    return tableOffset + index * sizeof(Entry);
}

} // namespace zvk::Pelkraft
