#include "common/row_size.h"

#include <limits>

namespace zvk::Pelkraft {
namespace {

// It equals no 32-bit size.
constexpr std::int64_t tooLarge = std::numeric_limits<std::int64_t>::max();

std::int64_t LimitedProduct(std::int64_t a, std::int64_t b)
{
    constexpr std::int64_t limit = std::int64_t{1} << 31;
    if (a == 0 || b == 0)
        return 0;
    if (a > limit || a < -limit || b > limit || b < -limit)
        return tooLarge;
    return a * b;
}

std::int64_t ExactRowSize(const RowGeometry& geometry)
{
    const std::int64_t bits = geometry.bits;
    if (!geometry.planar)
        return LimitedProduct(LimitedProduct(geometry.channels, geometry.width), (bits + 7) / 8);
    return LimitedProduct(geometry.channels, (geometry.width * bits + 7) / 8);
}

} // namespace

bool IsTrueRowSize(const RowGeometry& geometry)
{
    return ExactRowSize(geometry) == WrappedRowSize(geometry);
}

bool HidesTrueRowSize(const RowGeometry& geometry)
{
    return geometry.width >= 0 && geometry.channels >= 0 && geometry.bits > 0 &&
           geometry.bits <= 16 && RowSizeFits(geometry) && !IsTrueRowSize(geometry);
}

} // namespace zvk::Pelkraft
