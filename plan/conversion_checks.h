#pragma once

#include "common/conversion.h"

#include <algorithm>
#include <cstdlib>

// The checks of a conversion. They stand here with their bodies, since each call of a row makes
// them and they are less work than the calls of them.
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
    const std::int64_t sourceWidth = request.source.width;
    const std::int64_t destinationWidth = request.destination.width;
    std::int64_t sourceActive = std::min(sourceWidth, destinationWidth);
    std::int64_t destinationActive = sourceActive;
    // Most calls have the factor 1, and a division takes longer than all else here.
    if (request.factor != 1) {
        const std::int64_t repeats = std::abs(std::int64_t{request.factor});
        sourceActive = std::min(sourceWidth, (destinationWidth + repeats - 1) / repeats);
        destinationActive = std::min(sourceWidth * repeats, destinationWidth);
    }
    BuildFormat(formats.source, request.source, request.factor < 0, sourceActive);
    BuildFormat(formats.destination, request.destination, false, destinationActive);
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

} // namespace zvk::Pelkraft
