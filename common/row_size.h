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

// True if the wrapped size is the true one.
bool IsTrueRowSize(const RowGeometry& geometry);

// True if the true size fits 32 bits, for a geometry without negative numbers and of at most 16
// bits: its products fit 64 bits as they stand.
inline bool RowSizeFits(const RowGeometry& geometry)
{
    constexpr auto largestSize =
        static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
    const auto channels = static_cast<std::uint64_t>(geometry.channels);
    const auto width = static_cast<std::uint64_t>(geometry.width);
    const auto bits = static_cast<std::uint64_t>(geometry.bits);
    if (geometry.planar)
        return channels * ((width * bits + 7) / 8) <= largestSize;
    const std::uint64_t samples = channels * width;
    return samples <= largestSize && samples * ((bits + 7) / 8) <= largestSize;
}

// True if a conversion can serve the geometry, since its true size fits, although the 32-bit size
// has wrapped: the bits of a plane may wrap where its bytes don't.
bool HidesTrueRowSize(const RowGeometry& geometry);

} // namespace zvk::Pelkraft
