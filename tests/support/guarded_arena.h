#pragma once

#include "tests/support/guarded_buffer.h"

#include <cstddef>

namespace zvk::Pelkraft::TestSupport {

// Memory between two forbidden pages in which one buffer after the other is placed, without a
// system call for each.
class GuardedArena
{
public:
    explicit GuardedArena(std::size_t newCapacity);

    // A buffer of exactly this size, flush with the forbidden page after or before it but for
    // gap bytes. Throws std::bad_alloc where there is no room.
    unsigned char* Place(std::size_t size, Flush flush, std::size_t gap = 0) const;
    // As Place, with a gap of one byte where the address would be even.
    unsigned char* PlaceAtOddAddress(std::size_t size, Flush flush) const;
    // From now on a write faults too.
    void MakeReadOnly() const;

private:
    GuardedBuffer memory;
};

} // namespace zvk::Pelkraft::TestSupport
