#pragma once

#include <cstddef>
#include <cstring>

namespace zvk::Pelkraft {

constexpr std::size_t copyUnitBytes = 16;

// One move of 16 bytes at any address: all of them are read before the first is written.
inline void CopyUnit(const unsigned char* source, unsigned char* destination)
{
    unsigned char unit[copyUnitBytes];
    std::memcpy(unit, source, copyUnitBytes);
    std::memcpy(destination, unit, copyUnitBytes);
}

} // namespace zvk::Pelkraft
