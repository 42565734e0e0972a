#include "tests/support/counted_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#if defined(_WIN32)
#include <malloc.h>
#endif

namespace {

using zvk::Pelkraft::TestSupport::CountedMemory;

thread_local CountedMemory* watcher = nullptr;

#if defined(_WIN32)

void* AllocateAligned(std::size_t bytes, std::size_t alignment) noexcept
{
    return _aligned_malloc(std::max<std::size_t>(bytes, 1), alignment);
}

void FreeAligned(void* memory) noexcept
{
    _aligned_free(memory);
}

#else

void* AllocateAligned(std::size_t bytes, std::size_t alignment) noexcept
{
    void* memory = nullptr;
    // Unlike aligned_alloc it takes any size, so that a sanitizer sees the row's true end.
    const int error = posix_memalign(&memory, std::max(alignment, sizeof(void*)), bytes);
    return error == 0 ? memory : nullptr;
}

void FreeAligned(void* memory) noexcept
{
    std::free(memory);
}

#endif

void* AllocateAny(std::size_t bytes, std::size_t alignment) noexcept
{
    if (alignment == 0)
        return std::malloc(std::max<std::size_t>(bytes, 1));
    return AllocateAligned(bytes, alignment);
}

void* Allocate(std::size_t bytes, std::size_t alignment) noexcept
{
    if (watcher == nullptr || !watcher->Counted(alignment))
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

void Free(void* memory, std::size_t alignment) noexcept
{
    if (watcher != nullptr && memory != nullptr && watcher->Counted(alignment))
        watcher->NoteFreed();
    if (alignment == 0)
        std::free(memory);
    else
        FreeAligned(memory);
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
    Free(memory, 0);
}

void operator delete[](void* memory) noexcept
{
    Free(memory, 0);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Free(memory, 0);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    Free(memory, 0);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    Free(memory, 0);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    Free(memory, 0);
}

void operator delete(void* memory, std::align_val_t alignment) noexcept
{
    Free(memory, static_cast<std::size_t>(alignment));
}

void operator delete[](void* memory, std::align_val_t alignment) noexcept
{
    Free(memory, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory, std::size_t, std::align_val_t alignment) noexcept
{
    Free(memory, static_cast<std::size_t>(alignment));
}

void operator delete[](void* memory, std::size_t, std::align_val_t alignment) noexcept
{
    Free(memory, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    Free(memory, static_cast<std::size_t>(alignment));
}

void operator delete[](void* memory, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    Free(memory, static_cast<std::size_t>(alignment));
}

namespace zvk::Pelkraft::TestSupport {

CountedMemory::~CountedMemory()
{
    Stop();
}

void CountedMemory::Start()
{
    watcher = this;
}

void CountedMemory::Stop()
{
    watcher = nullptr;
}

void CountedMemory::FailAt(std::size_t number, Fails fails)
{
    firstFailing = asked + number;
    lastFailing = fails == Fails::ForEver ? never : firstFailing;
}

bool CountedMemory::Allow(const Allocation& allocation)
{
    if (asked < kept)
        allocations[asked] = allocation;
    const std::size_t number = asked++;
    const bool fails =
        (number >= firstFailing && number <= lastFailing) || allocation.bytes > mostBytes;
    failed += fails ? 1 : 0;
    return !fails;
}

DeniedMemory::DeniedMemory()
{
    memory.FailAt(0, CountedMemory::Fails::ForEver);
    memory.Start();
}

} // namespace zvk::Pelkraft::TestSupport
