#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

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
