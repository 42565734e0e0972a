#include "tests/undefined_bytes/memory_shadow.h"

#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#define PELKRAFT_MEMORY_SANITIZER
#endif
#endif

#if defined(PELKRAFT_MEMORY_SANITIZER)
#include <sanitizer/msan_interface.h>
#else
#include <valgrind/memcheck.h>

#include <cstdint>
#endif

namespace zvk::Pelkraft::TestSupport {

#if defined(PELKRAFT_MEMORY_SANITIZER)

const char* ShadowTool()
{
    return "MemorySanitizer";
}

// Clang 14 takes each byte of a shuffle of AVX-512 for as defined as the bytes in the same place.
int HighestFollowedLevel()
{
    return 6;
}

void MarkUndefined(void* memory, std::size_t bytes)
{
    __msan_poison(memory, bytes);
}

std::size_t FirstUndefined(const void* memory, std::size_t bytes)
{
    const auto first = __msan_test_shadow(memory, bytes);
    return first < 0 ? bytes : static_cast<std::size_t>(first);
}

#else

const char* ShadowTool()
{
    return RUNNING_ON_VALGRIND ? "valgrind" : nullptr;
}

// It has no AVX-512, and shows a processor without it.
int HighestFollowedLevel()
{
    return 6;
}

void MarkUndefined(void* memory, std::size_t bytes)
{
    (void)VALGRIND_MAKE_MEM_UNDEFINED(memory, bytes);
}

// Not by the request for a check, which would also report what it finds.
std::size_t FirstUndefined(const void* memory, std::size_t bytes)
{
    const auto address = reinterpret_cast<std::uintptr_t>(memory);
    for (std::size_t i = 0; i != bytes; ++i) {
        unsigned char undefinedBits = 0xFF;
        (void)VALGRIND_GET_VBITS(address + i, &undefinedBits, 1);
        if (undefinedBits != 0)
            return i;
    }
    return bytes;
}

#endif

} // namespace zvk::Pelkraft::TestSupport
