#pragma once

#include "common/conversion.h"

#include <cstdint>

// The checks of a conversion, whose order is always the same.
namespace zvk::Pelkraft {

inline constexpr const char* invalidWidth = "zvk::Pelkraft::ImageRowFormat invalid width";
inline constexpr const char* invalidChannels =
    "zvk::Pelkraft::ImageRowFormat invalid channel count";
inline constexpr const char* unsupportedPair = "zvk::Pelkraft::Convert unsupported conversion";
inline constexpr const char* unsupportedMap =
    "zvk::Pelkraft::ImageRow::FillFromWithRemap unsupported conversion";

inline void BuildFormat(ImageRowFormat& format, const RowGeometry& geometry, bool reversed,
                        std::int64_t activeWidth)
{
    format.bits = geometry.bits;
    format.layout = LayoutOf(geometry.bits, geometry.planar);
    format.channels = geometry.channels;
    format.reversed = reversed;
    format.width = geometry.width;
    format.activeWidth = activeWidth;

    RequireSupportedDepth(format.bits);
    // Compared as unsigned: a negative active width must fail here.
    if (static_cast<std::uint32_t>(format.width) < static_cast<std::uint32_t>(format.activeWidth))
        throw invalidWidth;
}

// Sizes that index memory are right only where the row's own size is. Each fault is looked for in
// both rows ahead of the next.
inline void RequireTrueSizes(const RowGeometry& source, const RowGeometry& destination)
{
    if (source.width < 0 || destination.width < 0)
        throw invalidWidth;
    if (source.channels < 0 || destination.channels < 0)
        throw invalidChannels;
    if (!RowSizeFits(source) || !RowSizeFits(destination))
        throw invalidWidth;
}

// A row of bytes and a row of packed bytes of one depth have no step between them, and the bytes
// of a packed row of depth 10 hold no whole number of samples.
inline bool LayoutsMeet(const FormatPair& formats)
{
    const bool packedSource = IsPacked(formats.source);
    const bool packedDestination = IsPacked(formats.destination);
    if ((packedSource && formats.source.bits == 10) ||
        (packedDestination && formats.destination.bits == 10))
        return false;
    return formats.source.bits != formats.destination.bits || packedSource == packedDestination;
}

// Both rows limited to the pixels that both have. Throws
//   "zvk::Pelkraft::ImageRowFormat unsupported bit depth"
//   "zvk::Pelkraft::ImageRowFormat invalid width"
// for the source, then for the destination.
inline void BuildFormats(FormatPair& formats, const ConversionRequest& request)
{
    const ActiveWidths active = ActiveWidthsOf(request);
    BuildFormat(formats.source, request.source, request.factor < 0, active.source);
    BuildFormat(formats.destination, request.destination, false, active.destination);
}

// Refuses what no road serves, once there is a chain for it, and answers whether there is a pixel
// to move at all. Throws
//   "zvk::Pelkraft::ImageRowFormat invalid width"
//   "zvk::Pelkraft::ImageRowFormat invalid channel count"
//   "zvk::Pelkraft::Convert unsupported conversion"
//   "zvk::Pelkraft::ImageRow::FillFromWithRemap unsupported conversion"
inline bool MovesPixels(const ConversionRequest& request, const FormatPair& formats)
{
    RequireTrueSizes(request.source, request.destination);
    if (formats.destination.channels == 0)
        return false;
    if (formats.source.channels == 0 || !LayoutsMeet(formats))
        throw unsupportedPair;
    if (request.map.entryCount != 0 && request.map.entries == nullptr)
        throw unsupportedMap;
    // Both sides' active widths are 0, or neither.
    return formats.source.activeWidth != 0;
}

// True only where no check finds anything and there are pixels to move. Most requests are such and
// need no more than this; the others go through the checks one by one.
inline bool IsFaultless(const ConversionRequest& request)
{
    // Planes of 1, 2, 8 and 16 bits and interleaved samples of 8 and 16 have a way to each other.
    const auto isCommon = [](const RowGeometry& row) {
        constexpr std::uint32_t interleaved = 1U << 8 | 1U << 16;
        constexpr std::uint32_t planar = interleaved | 1U << 1 | 1U << 2;
        const auto depth = static_cast<std::uint32_t>(row.bits);
        return depth <= 16 && ((row.planar ? planar : interleaved) >> depth & 1U) != 0;
    };
    // Negative numbers become large ones, and so does a sample count of 0 less 1.
    const auto countLessOne = [](const RowGeometry& row) {
        return std::uint64_t{static_cast<std::uint32_t>(row.channels)} *
                   static_cast<std::uint32_t>(row.width) -
               1;
    };
    // So many samples of 2 bytes fit a size of 32 bits.
    constexpr std::uint64_t mostSamples = std::uint64_t{1} << 30;
    return isCommon(request.source) && isCommon(request.destination) &&
           countLessOne(request.source) < mostSamples - 1 &&
           countLessOne(request.destination) < mostSamples - 1 &&
           !(request.repeats && request.maps) &&
           (request.map.entryCount == 0 || request.map.entries != nullptr);
}

} // namespace zvk::Pelkraft
