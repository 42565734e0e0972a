#pragma once

#include <cstdint>
#include <limits>

namespace zvk::Pelkraft {

struct RowGeometry
{
    std::int32_t width;
    std::int32_t channels;
    std::int32_t bits;
    bool planar;
};

inline std::int32_t WrappedProduct(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

inline std::int32_t WrappedRoundToBytes(std::int32_t bits)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(bits) + 7U) / 8;
}

// Bytes of one plane, bit-packed and rounded up, in 32 bits, which wrap.
inline std::int32_t WrappedPlaneSize(const RowGeometry& geometry)
{
    return WrappedRoundToBytes(WrappedProduct(geometry.width, geometry.bits));
}

// Bytes of the row's pixels in 32 bits, which wrap.
inline std::int32_t WrappedRowSize(const RowGeometry& geometry)
{
    if (geometry.planar)
        return WrappedProduct(geometry.channels, WrappedPlaneSize(geometry));
    return WrappedProduct(WrappedProduct(geometry.channels, geometry.width),
                          WrappedRoundToBytes(geometry.bits));
}

// Whether the wrapped size is the true one, for a geometry of any numbers.
bool AnyRowSizeFits(const RowGeometry& geometry);

// The products of a plain geometry fit 64 bits as they stand. A plane whose bits wrap has no true
// size in 32 bits.
inline bool PlainRowSizeFits(const RowGeometry& geometry)
{
    constexpr auto largestSize =
        static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
    const auto channels = static_cast<std::uint64_t>(geometry.channels);
    const auto width = static_cast<std::uint64_t>(geometry.width);
    const auto bits = static_cast<std::uint64_t>(geometry.bits);
    if (channels == 0)
        return true;
    if (geometry.planar)
        return width * bits + 7 <= largestSize &&
               channels * ((width * bits + 7) / 8) <= largestSize;
    const std::uint64_t samples = channels * width;
    return samples <= largestSize && samples * ((bits + 7) / 8) <= largestSize;
}

// Whether the wrapped size is the true one.
inline bool RowSizeFits(const RowGeometry& geometry)
{
    const bool plain =
        geometry.width >= 0 && geometry.channels >= 0 && geometry.bits > 0 && geometry.bits <= 16;
    return plain ? PlainRowSizeFits(geometry) : AnyRowSizeFits(geometry);
}

} // namespace zvk::Pelkraft
