#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// Layout codes. A packed plane holds several samples per byte.
constexpr std::int32_t LayoutInterleaved = 0x100;
constexpr std::int32_t LayoutPlanar = 0x200;
constexpr std::int32_t LayoutPlanarPacked = 0x600;

// The form of a row for a conversion or one step of it. Widths are in pixels.
struct ImageRowFormat
{
    std::int32_t bits = 0;
    std::int32_t layout = 0;
    std::int32_t channels = 0;
    // The walk begins at the row's end. Never so for a destination.
    bool reversed = false;
    std::int64_t width = 0;
    // So many of them have a counterpart in the other row.
    std::int64_t activeWidth = 0;
};

inline std::int32_t LayoutOf(std::int32_t bits, bool planar)
{
    if (!planar)
        return LayoutInterleaved;
    return (bits & 7) != 0 ? LayoutPlanarPacked : LayoutPlanar;
}

// By layout and not by depth: an interleaved row of 1 or 2 bits is a row of bytes.
inline bool IsPacked(const ImageRowFormat& format)
{
    return format.layout == LayoutPlanarPacked;
}

std::uint64_t PixelBytes(const ImageRowFormat& format);

constexpr const char* unsupportedDepth = "zvk::Pelkraft::ImageRowFormat unsupported bit depth";

// Throws unsupportedDepth unless bits is 1, 2, 8, 10 or 16.
inline void RequireSupportedDepth(std::int32_t bits)
{
    constexpr std::uint32_t supportedDepths = 1U << 1 | 1U << 2 | 1U << 8 | 1U << 10 | 1U << 16;
    const auto depth = static_cast<std::uint32_t>(bits);
    if (depth > 16 || (supportedDepths >> depth & 1U) == 0)
        throw unsupportedDepth;
}

// A pixel count in what is counted along the row: byte columns of a packed row, else pixels.
std::uint64_t CountColumns(const ImageRowFormat& format, std::int64_t pixels);

// The active part in whole chunks. The last byte of a packed row counts only if it is full.
std::uint64_t CountWholeChunks(const ImageRowFormat& format);

} // namespace zvk::Pelkraft
