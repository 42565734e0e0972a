#include "tests/support/guarded_arena.h"

#include "tests/support/page_memory.h"

#include <cstdint>
#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

// Both ends are flush only where the content is whole pages.
std::size_t WholePages(std::size_t bytes)
{
    const std::size_t page = GetPageBytes();
    return (bytes + page - 1) / page * page;
}

} // namespace

GuardedArena::GuardedArena(std::size_t newCapacity) : memory(WholePages(newCapacity)) {}

unsigned char* GuardedArena::Place(std::size_t size, Flush flush, std::size_t gap) const
{
    if (size + gap > memory.size())
        throw std::bad_alloc();
    return flush == Flush::AtStart ? memory.data() + gap
                                   : memory.data() + memory.size() - size - gap;
}

unsigned char* GuardedArena::PlaceAtOddAddress(std::size_t size, Flush flush) const
{
    unsigned char* const flushPlace = Place(size, flush);
    const bool isOdd = reinterpret_cast<std::uintptr_t>(flushPlace) % 2 != 0;
    return isOdd ? flushPlace : Place(size, flush, 1);
}

void GuardedArena::MakeReadOnly() const
{
    SetPageAccess(memory.data(), memory.size(), PageAccess::Read);
}

} // namespace zvk::Pelkraft::TestSupport
