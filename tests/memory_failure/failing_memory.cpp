// Loaded ahead of a program by LD_PRELOAD, this lets one of its allocations fail, or one and all
// that follow. New threads count as allocations: they need memory for their stack.
#include "tests/memory_failure/failing_memory.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

using zvk::Pelkraft::TestSupport::AllocationRecord;
namespace Variables = zvk::Pelkraft::TestSupport;

// Nothing here may allocate, and the first call comes ahead of all constructors.
struct Plan
{
    unsigned long failing;
    bool forEver;
};

constinit AllocationRecord ownRecord{};
constinit AllocationRecord* record = &ownRecord;
constinit Plan plan{};
constinit std::atomic<bool> counts{false};
constinit std::atomic<bool> isReady{false};

void OpenRecord(const char* path)
{
    const int file = open(path, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return;
    void* const memory =
        mmap(nullptr, sizeof(AllocationRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory != MAP_FAILED)
        record = static_cast<AllocationRecord*>(memory);
    close(file);
}

// The process has one thread yet.
void ReadVariables()
{
    if (isReady.exchange(true))
        return;
    if (const char* const path = std::getenv(Variables::allocationRecordVariable))
        OpenRecord(path);
    if (const char* const number = std::getenv(Variables::failingAllocationVariable))
        plan.failing = std::strtoul(number, nullptr, 10);
    plan.forEver = std::getenv(Variables::failsForEverVariable) != nullptr;
    counts = std::getenv(Variables::countsFromStartVariable) != nullptr;
}

bool Allows()
{
    ReadVariables();
    if (!counts.load(std::memory_order_relaxed))
        return true;
    const std::uint64_t number = record->asked.fetch_add(1) + 1;
    const bool fails =
        plan.failing != 0 && (number == plan.failing || (plan.forEver && number > plan.failing));
    if (fails) {
        record->failed.fetch_add(1);
        errno = ENOMEM;
    }
    return !fails;
}

// Finds the function that this one hides: that of the C library, or of a checker below it.
template <typename Function>
Function* Next(std::atomic<Function*>& known, const char* name)
{
    Function* function = known.load(std::memory_order_relaxed);
    if (function == nullptr) {
        function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
        known.store(function, std::memory_order_relaxed);
    }
    return function;
}

using MainFunction = int(int, char**, char**);
MainFunction* trueMain = nullptr;

int CountFromMain(int argc, char** argv, char** variables)
{
    ReadVariables();
    counts = true;
    const int code = trueMain(argc, argv, variables);
    record->returned = 1;
    return code;
}

} // namespace

#pragma GCC visibility push(default)

extern "C" {

void* malloc(std::size_t size) noexcept
{
    static constinit std::atomic<void* (*)(std::size_t)> next{nullptr};
    return Allows() ? Next(next, "malloc")(size) : nullptr;
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    static constinit std::atomic<void* (*)(std::size_t, std::size_t)> next{nullptr};
    return Allows() ? Next(next, "calloc")(count, size) : nullptr;
}

void* realloc(void* memory, std::size_t size) noexcept
{
    static constinit std::atomic<void* (*)(void*, std::size_t)> next{nullptr};
    return Allows() ? Next(next, "realloc")(memory, size) : nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    static constinit std::atomic<void* (*)(std::size_t, std::size_t)> next{nullptr};
    return Allows() ? Next(next, "aligned_alloc")(alignment, size) : nullptr;
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept
{
    static constinit std::atomic<int (*)(void**, std::size_t, std::size_t)> next{nullptr};
    return Allows() ? Next(next, "posix_memalign")(memory, alignment, size) : ENOMEM;
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept
{
    static constinit std::atomic<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*),
                                         void*)>
        next{nullptr};
    return Allows() ? Next(next, "pthread_create")(thread, attributes, start, argument) : EAGAIN;
}

// Every program begins here, and this calls its main.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the C library's own name for it.
int __libc_start_main(MainFunction* main, int argc, char** argv, void (*begin)(), void (*end)(),
                      void (*loaderEnd)(), void* stackEnd)
{
    using Start = int(MainFunction*, int, char**, void (*)(), void (*)(), void (*)(), void*);
    static constinit std::atomic<Start*> next{nullptr};
    trueMain = main;
    return Next(next, "__libc_start_main")(CountFromMain, argc, argv, begin, end, loaderEnd,
                                           stackEnd);
}

} // extern "C"

// The standard library's do the same, but a checker of memory puts its own in their place, which
// never fail.
void* operator new(std::size_t size)
{
    if (void* const memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    const auto unit = static_cast<std::size_t>(alignment);
    // The C function takes whole units only.
    if (void* const memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept
{
    std::free(memory);
}

#pragma GCC visibility pop
