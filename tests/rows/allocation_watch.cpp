#include "tests/rows/allocation_watch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

using zvk::Pelkraft::TestSupport::AllocationWatch;

thread_local AllocationWatch* watcher = nullptr;

void* AllocateAny(std::size_t bytes, std::size_t alignment) noexcept
{
    if (alignment == 0)
        return std::malloc(std::max<std::size_t>(bytes, 1));
    void* memory = nullptr;
    // Unlike aligned_alloc it takes any size, so that a sanitizer sees the row's true end.
    const int error = posix_memalign(&memory, std::max(alignment, sizeof(void*)), bytes);
    return error == 0 ? memory : nullptr;
}

void* Allocate(std::size_t bytes, std::size_t alignment) noexcept
{
    if (watcher == nullptr)
        return AllocateAny(bytes, alignment);
    if (!watcher->Allow({bytes, alignment}))
        return nullptr;
    void* const memory = AllocateAny(bytes, alignment);
    if (memory == nullptr)
        return nullptr;
    // Fresh pages are zero by luck, which nobody may count on.
    std::memset(memory, 0xDB, bytes);
    watcher->NoteAllocated();
    return memory;
}

void* AllocateOrThrow(std::size_t bytes, std::size_t alignment)
{
    void* const memory = Allocate(bytes, alignment);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void Free(void* memory) noexcept
{
    if (watcher != nullptr && memory != nullptr)
        watcher->NoteFreed();
    std::free(memory);
}

} // namespace

void* operator new(std::size_t bytes)
{
    return AllocateOrThrow(bytes, 0);
}

void* operator new[](std::size_t bytes)
{
    return AllocateOrThrow(bytes, 0);
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, 0);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, 0);
}

void* operator new(std::size_t bytes, std::align_val_t alignment)
{
    return AllocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t bytes, std::align_val_t alignment)
{
    return AllocateOrThrow(bytes, static_cast<std::size_t>(alignment));
}

void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    return Allocate(bytes, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory) noexcept
{
    Free(memory);
}

void operator delete[](void* memory) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    Free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::align_val_t) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept
{
    Free(memory);
}

namespace zvk::Pelkraft::TestSupport {

AllocationWatch::AllocationWatch(std::size_t newFailing) : failing(newFailing) {}

AllocationWatch::~AllocationWatch()
{
    Stop();
}

void AllocationWatch::Start()
{
    watcher = this;
}

void AllocationWatch::Stop()
{
    watcher = nullptr;
}

bool AllocationWatch::Allow(const Allocation& allocation)
{
    if (asked < kept)
        allocations[asked] = allocation;
    return asked++ != failing;
}

} // namespace zvk::Pelkraft::TestSupport
