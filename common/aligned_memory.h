#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace zvk::Pelkraft {

// Null if there is no memory for it. The alignment is that of the later FreeAligned.
unsigned char* AllocateAligned(std::uint64_t bytes, std::size_t alignment) noexcept;
void FreeAligned(unsigned char* memory, std::size_t alignment) noexcept;

template <std::size_t alignment>
struct AlignedFree
{
    void operator()(unsigned char* memory) const noexcept { FreeAligned(memory, alignment); }
};

template <std::size_t alignment>
using AlignedMemory = std::unique_ptr<unsigned char, AlignedFree<alignment>>;

} // namespace zvk::Pelkraft
