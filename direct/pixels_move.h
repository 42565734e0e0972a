#pragma once

#include "direct/kernels.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// Whole pixels mirrored and repeated, by pieces that one level can load and store at once.
// All of it has internal linkage on purpose: it is compiled for each level.
namespace zvk::Pelkraft {
namespace {

// Above this, a call of the C library's copy costs less than it gains.
constexpr std::size_t maxInlineBytes = 512;

// Calls copy(from, to, copies) for each source pixel, `copies` being a constant of the build but
// for a last pixel that has fewer.
template <std::size_t repeat, typename Copy>
[[gnu::always_inline]] inline void ForEachPixel(const PixelMove& move,
                                                std::size_t destinationPixels, Copy copy)
{
    const std::size_t bytes = move.pixelBytes;
    const std::size_t whole = destinationPixels / repeat;
    const std::size_t rest = destinationPixels % repeat;
    const std::size_t sourcePixels = rest == 0 ? whole : whole + 1;
    // Unsigned, so that a step backwards wraps around.
    const std::size_t fromStep = move.mirrored ? 0 - bytes : bytes;
    std::size_t from = move.mirrored ? (sourcePixels - 1) * bytes : 0;
    std::size_t to = 0;
    for (std::size_t pixel = 0; pixel < whole; ++pixel) {
        copy(from, to, repeat);
        from += fromStep;
        to += repeat * bytes;
    }
    if (rest != 0)
        copy(from, to, rest);
}

// Pixels of one piece and a tail that overlaps it. A tail no longer than needed crosses fewer lines
// of the cache.
template <typename Piece, typename Tail, std::size_t repeat>
void MoveByTwo(const PixelMove& move, const unsigned char* source, unsigned char* destination,
               std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    const std::size_t second = bytes - Tail::bytes;
    ForEachPixel<repeat>(move, destinationPixels,
                         [=](std::size_t from, std::size_t to, std::size_t copies) {
                             const auto start = Piece::Get(source + from);
                             const auto end = Tail::Get(source + from + second);
                             for (std::size_t i = 0; i < copies; ++i) {
                                 Piece::Put(destination + to + i * bytes, start);
                                 Tail::Put(destination + to + i * bytes + second, end);
                             }
                         });
}

// Pixels that one piece holds. What it writes too much of lies in the next pixel; so the first and
// the last source pixel, which have none on one side, are moved by narrower pieces.
template <typename Wide, typename Narrow, std::size_t repeat>
void MoveByOne(const PixelMove& move, const unsigned char* source, unsigned char* destination,
               std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    const std::size_t sourcePixels = (destinationPixels + repeat - 1) / repeat;
    if (sourcePixels <= 1)
        return MoveByTwo<Narrow, Narrow, repeat>(move, source, destination, destinationPixels);
    const unsigned char* end = source + (sourcePixels - 1) * bytes;
    MoveByTwo<Narrow, Narrow, repeat>(move, move.mirrored ? end : source, destination, repeat);
    const std::size_t doneCopies = (sourcePixels - 1) * repeat;
    const unsigned char* middle = source + bytes;
    unsigned char* to = destination + repeat * bytes;
    ForEachPixel<repeat>(move, doneCopies - repeat,
                         [=](std::size_t from, std::size_t at, std::size_t copies) {
                             const auto pixel = Wide::Get(middle + from);
                             for (std::size_t i = 0; i < copies; ++i)
                                 Wide::Put(to + at + i * bytes, pixel);
                         });
    MoveByTwo<Narrow, Narrow, repeat>(move, move.mirrored ? source : end,
                                      destination + doneCopies * bytes,
                                      destinationPixels - doneCopies);
}

// Pixels of some pieces and a tail.
template <typename Piece, typename Tail, std::size_t repeat>
void MoveByPieces(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                  std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    const std::size_t whole = (bytes - 1) / Piece::bytes * Piece::bytes;
    const std::size_t last = bytes - Tail::bytes;
    ForEachPixel<repeat>(
        move, destinationPixels, [=](std::size_t from, std::size_t to, std::size_t copies) {
            for (std::size_t i = 0; i < copies; ++i, to += bytes) {
                for (std::size_t at = 0; at < whole; at += Piece::bytes)
                    Piece::Put(destination + to + at, Piece::Get(source + from + at));
                Tail::Put(destination + to + last, Tail::Get(source + from + last));
            }
        });
}

template <std::size_t repeat>
void MoveByCopy(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    ForEachPixel<repeat>(move, destinationPixels,
                         [=](std::size_t from, std::size_t to, std::size_t copies) {
                             for (std::size_t i = 0; i < copies; ++i)
                                 std::memcpy(destination + to + i * bytes, source + from, bytes);
                         });
}

template <typename Wide, typename Narrow, std::size_t repeat>
void MoveRepeated(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                  std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    const bool isTailNarrow = (bytes - 1) % Wide::bytes < Narrow::bytes;
    if (bytes > maxInlineBytes)
        MoveByCopy<repeat>(move, source, destination, destinationPixels);
    else if (bytes < Wide::bytes)
        MoveByOne<Wide, Narrow, repeat>(move, source, destination, destinationPixels);
    else if (bytes > 2 * Wide::bytes && isTailNarrow)
        MoveByPieces<Wide, Narrow, repeat>(move, source, destination, destinationPixels);
    else if (bytes > 2 * Wide::bytes)
        MoveByPieces<Wide, Wide, repeat>(move, source, destination, destinationPixels);
    else if (bytes > Wide::bytes && isTailNarrow)
        MoveByTwo<Wide, Narrow, repeat>(move, source, destination, destinationPixels);
    else
        MoveByTwo<Wide, Wide, repeat>(move, source, destination, destinationPixels);
}

// Pixels of at least as many bytes as the narrow piece, which is half as long as the wide one or as
// long.
template <typename Wide, typename Narrow>
void MovePixels(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                std::size_t destinationPixels)
{
    if (move.repeat == 1)
        MoveRepeated<Wide, Narrow, 1>(move, source, destination, destinationPixels);
    else if (move.repeat == 2)
        MoveRepeated<Wide, Narrow, 2>(move, source, destination, destinationPixels);
    else
        MoveRepeated<Wide, Narrow, 4>(move, source, destination, destinationPixels);
}

} // namespace
} // namespace zvk::Pelkraft
