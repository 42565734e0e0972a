#pragma once

#include "direct/kernels.h"

// The vector files that finish rows share their methods, over the lanes of the file that includes
// this one. All of it has internal linkage.
namespace zvk::Pelkraft {
namespace {

constexpr std::size_t vectorBytes = std::size_t{16} * laneCount;
// So many bytes go to the memory at a time.
constexpr std::size_t lineBytes = 64;

inline void XorFew(unsigned char* row, const unsigned char* pattern, std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = static_cast<unsigned char>(row[i] ^ pattern[i]);
}

void Patch(unsigned char* row, std::size_t bytes, const unsigned char* pattern, std::size_t period)
{
    std::size_t place = 0;
    std::size_t x = 0;
    for (; x + patternBytes <= bytes; x += patternBytes) {
        for (std::size_t i = 0; i < patternBytes; i += vectorBytes)
            Store(row + x + i, Xor(Load(row + x + i), Load(pattern + place + i)));
        place += patternBytes;
        if (place >= period)
            place -= period;
    }
    XorFew(row + x, pattern + place, bytes - x);
}

inline void CopyFew(const unsigned char* source, unsigned char* destination, std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; ++i)
        destination[i] = source[i];
}

void Stream(const unsigned char* source, unsigned char* destination, std::size_t bytes)
{
    const auto address = reinterpret_cast<std::uintptr_t>(destination);
    const auto toLine = static_cast<std::size_t>((lineBytes - address % lineBytes) % lineBytes);
    std::size_t x = toLine < bytes ? toLine : bytes;
    CopyFew(source, destination, x);
    for (; x + lineBytes <= bytes; x += lineBytes)
        for (std::size_t i = 0; i < lineBytes; i += vectorBytes)
            StoreStreaming(destination + x + i, Load(source + x + i));
    CopyFew(source + x, destination + x, bytes - x);
}

void Fence()
{
    _mm_sfence();
}

constexpr FinishKernels kernels = {Patch, Stream, Fence};

} // namespace
} // namespace zvk::Pelkraft
