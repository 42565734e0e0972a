#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

struct RowGeometry
{
    std::int32_t width;
    std::int32_t channels;
    std::int32_t bits;
    bool planar;
};

// Bytes of one plane, bit-packed and rounded up, in 32 bits, which wrap.
std::int32_t WrappedPlaneSize(const RowGeometry& geometry);
// Bytes of the row's pixels in 32 bits, which wrap.
std::int32_t WrappedRowSize(const RowGeometry& geometry);
// Whether the wrapped size is the true one.
bool RowSizeFits(const RowGeometry& geometry);

} // namespace zvk::Pelkraft
