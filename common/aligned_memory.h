#pragma once

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// Null if there is no memory for it. The alignment is that of the later FreeAligned.
unsigned char* AllocateAligned(std::uint64_t bytes, std::size_t alignment) noexcept;
void FreeAligned(unsigned char* memory, std::size_t alignment) noexcept;

} // namespace zvk::Pelkraft
