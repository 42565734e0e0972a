#include "common/aligned_memory.h"

#include <cstdint>
#include <limits>
#include <new>

namespace zvk::Pelkraft {

unsigned char* AllocateAligned(std::uint64_t bytes, std::size_t alignment) noexcept
{
    if (bytes > std::numeric_limits<std::size_t>::max())
        return nullptr;
    return static_cast<unsigned char*>(
        ::operator new(static_cast<std::size_t>(bytes), std::align_val_t(alignment), std::nothrow));
}

void FreeAligned(unsigned char* memory, std::size_t alignment) noexcept
{
    ::operator delete(memory, std::align_val_t(alignment));
}

} // namespace zvk::Pelkraft
