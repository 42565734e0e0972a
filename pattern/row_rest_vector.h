#pragma once

#include "pattern/sse_row.h"

#include <cstddef>

// Only files built with vector flags include this: all of it has internal linkage on purpose, so
// that the linker never takes code of these files for the rest of the program.
namespace zvk::Pelkraft {
namespace {

inline SseRow FirstPixels(const SseRow& row, std::uint32_t pixels)
{
    SseRow first = row;
    first.pixels = pixels;
    return first;
}

inline SseRow SkipPixels(const SseRow& row, std::uint32_t pixels)
{
    SseRow rest = row;
    rest.source += std::size_t{pixels} * row.sourceStride;
    rest.destination += std::size_t{pixels} * row.destinationStride;
    rest.pixels -= pixels;
    if (row.single == nullptr)
        rest.position =
            static_cast<std::uint32_t>((std::uint64_t{row.position} + pixels) % row.fieldSize);
    return rest;
}

// Counts the pixels up to the end of the row or of the field.
inline std::uint32_t CountPixelsAhead(const SseRow& row)
{
    const std::uint32_t ahead = row.single != nullptr ? row.pixels : row.fieldSize - row.position;
    return ahead < row.pixels ? ahead : row.pixels;
}

} // namespace
} // namespace zvk::Pelkraft
