#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// Finds the blocks after the chunks of a buffer. Its entries stand in the buffer itself, from
// tableOffset on; the blocks follow them, each rounded up to 16 bytes.
class OffsetTable
{
public:
    OffsetTable(std::uint64_t newEntryCount, std::uint64_t newTableOffset);

    // Adds a block of this many bytes. With null data, before there is a buffer, it only counts.
    // Throws "zvk::Pelkraft::OffsetTable::SetEntry invalid index" beyond the last entry.
    void SetEntry(unsigned char* data, std::uint64_t bytes);
    // Starts over, after counting.
    void Rewind();
    // Bytes of the buffer up to the end of the blocks set so far.
    std::uint64_t GetEnd() const { return cursor; }

    // Null for an empty block. Throws the same text beyond the last entry.
    unsigned char* GetBlock(unsigned char* data, std::uint64_t index) const;

private:
    std::uint64_t EntryOffset(std::uint64_t index) const;

    std::uint64_t entryCount;
    std::uint64_t tableOffset;
    std::uint64_t nextEntry = 0;
    std::uint64_t cursor = 0;
};

} // namespace zvk::Pelkraft
