#include "tests/system_tools/denied_memory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local bool memoryIsDenied = false;

void* Allocate(std::size_t size) noexcept
{
    return memoryIsDenied ? nullptr : std::malloc(size != 0 ? size : 1);
}

void* AllocateOrThrow(std::size_t size)
{
    if (void* const memory = Allocate(size))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return AllocateOrThrow(size);
}

void* operator new[](std::size_t size)
{
    return AllocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return Allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

namespace zvk::Pelkraft::TestSupport {

DeniedMemory::DeniedMemory()
{
    memoryIsDenied = true;
}

DeniedMemory::~DeniedMemory()
{
    memoryIsDenied = false;
}

} // namespace zvk::Pelkraft::TestSupport
