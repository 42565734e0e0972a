#pragma once

#include "pelkraft/image_row.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/naive_conversion.h"
#include "tests/support/random_bytes.h"

namespace zvk::Pelkraft::TestSupport {

// A row over a buffer of exactly its size between forbidden pages, filled from a seed.
struct GuardedRow
{
    GuardedRow(const NaiveGeometry& geometry, std::uint32_t seed)
        : GuardedRow(geometry, RandomBytes(NaiveRowBytes(geometry), seed))
    {}

    GuardedRow(const NaiveGeometry& geometry, const Bytes& content)
        : before(content), buffer(content),
          row(geometry.width, geometry.channels, geometry.bits, geometry.planar, buffer.data())
    {}

    bool IsUntouched() const { return buffer.bytes() == before; }

    Bytes before;
    GuardedBuffer buffer;
    ImageRow row;
};

} // namespace zvk::Pelkraft::TestSupport
