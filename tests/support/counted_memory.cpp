#include "tests/support/counted_memory.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using zvk::Pelkraft::TestSupport::CountedMemory;

thread_local CountedMemory* counter = nullptr;

void* Allocate(std::size_t size, std::align_val_t alignment) noexcept
{
    const auto unit = static_cast<std::size_t>(alignment);
    if (counter != nullptr && !counter->Admit(size, unit))
        return nullptr;
    // The C function takes whole units only.
    void* const memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit);
    // Fresh pages are zero by luck, which nobody may count on.
    if (memory != nullptr)
        std::memset(memory, 0xDB, size);
    return memory;
}

void Free(void* memory) noexcept
{
    if (memory != nullptr && counter != nullptr)
        counter->Forget();
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    return Allocate(size, alignment);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    if (void* const memory = Allocate(size, alignment))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept
{
    Free(memory);
}

namespace zvk::Pelkraft::TestSupport {

CountedMemory::CountedMemory(std::size_t failingAllocation) : failing(failingAllocation)
{
    counter = this;
}

CountedMemory::~CountedMemory()
{
    counter = nullptr;
}

bool CountedMemory::Admit(std::size_t size, std::size_t alignment)
{
    const bool admitted = sizes.size() != failing;
    sizes.push_back(size);
    alignments.push_back(alignment);
    if (admitted)
        ++live;
    return admitted;
}

} // namespace zvk::Pelkraft::TestSupport
