#pragma once

#include "pelkraft/plan.h"

#include <cstdint>

namespace zvk::Pelkraft {

// The bytes of a row that a run covers: so many from `first` on in each of so many planes, or in
// the row itself where it has none.
struct CoveredBytes
{
    std::uint64_t first = 0;
    std::uint64_t count = 0;
    std::uint64_t firstPlane = 0;
    std::uint64_t planes = 1;

    bool HasBytes() const { return count != 0 && planes != 0; }
};

// One side's rows of a run.
struct RowView
{
    const void* base;
    std::uint64_t bytes;
    std::int64_t offset;
    std::int64_t rowStride;
    std::int64_t planeStride;
};

// The caller's records, without sizes that are none, null, and all that this library does not know,
// which they refuse.
RowView ViewOf(const plk_source* source);
RowView ViewOf(const plk_target* target);

struct RowSide
{
    RowView view;
    CoveredBytes covered;
};

// The bytes of so many interleaved pixels, which have no planes. Their product fits 64 bits.
RowSide InterleavedSide(const RowView& view, std::uint64_t pixels, std::uint64_t pixelBytes);

// The first byte of a row.
const unsigned char* RowAt(const RowView& view, std::uint64_t row);

// Checks the memory of a run of one row or more, in this order: the source's base and extent, the
// target's base and extent, whether the target's rows and planes share a byte, whether the target
// shares one with the source. In place is allowed where both sides have the same base, offset and
// strides. A side without covered bytes is not looked at.
void RequireMemory(const RowSide& source, const RowSide& target, std::uint64_t rows,
                   bool mayBeInPlace);

} // namespace zvk::Pelkraft
