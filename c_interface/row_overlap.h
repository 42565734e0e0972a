#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// No memory has so many bytes. Sums of a few numbers up to this one fit 64 bits with a sign.
inline constexpr std::int64_t beyondMemory = std::int64_t{1} << 60;

// The size of a step without its sign. The smallest number has one, too.
constexpr std::uint64_t Magnitude(std::int64_t step)
{
    const auto bits = static_cast<std::uint64_t>(step);
    return step < 0 ? 0 - bits : bits;
}

// Pieces of equal length in memory: piece (r, c) begins at start + r * rowStep + c * planeStep.
// Their whole extent is known to lie in memory. No number of rows, planes or bytes is 0.
struct Pieces
{
    std::uintptr_t start;
    std::int64_t rowStep;
    std::int64_t planeStep;
    std::uint64_t rows;
    std::uint64_t planes;
    std::uint64_t bytes;
};

// True if two pieces share a byte. The answer is exact.
bool ShareBytes(const Pieces& pieces);

// True if a piece of the one shares a byte with a piece of the other. The answer is exact, but for
// pieces that would take too many comparisons, which count as sharing.
bool ShareBytes(const Pieces& one, const Pieces& other);

} // namespace zvk::Pelkraft
