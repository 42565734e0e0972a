#pragma once

#include "common/inlining.h"
#include "direct/kernels.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

// Whole pixels mirrored and repeated, by pieces that one level can load and store at once.
// All of it has internal linkage on purpose: it is compiled for each level.
namespace zvk::Pelkraft {
namespace {

// Above this, a call of the C library's copy costs less than it gains.
constexpr std::size_t maxInlineBytes = 512;

// Calls copy(from, to, copies) for each source pixel, `copies` being a constant of the build but
// for a last pixel that has fewer, if there may be one.
template <std::size_t repeat, bool mayHaveRest = repeat != 1, typename Copy>
PELKRAFT_ALWAYS_INLINE inline void ForEachPixel(const PixelMove& move,
                                                std::size_t destinationPixels, Copy copy)
{
    const std::size_t bytes = move.pixelBytes;
    const std::size_t whole = destinationPixels / repeat;
    const std::size_t rest = mayHaveRest ? destinationPixels % repeat : 0;
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
    if constexpr (mayHaveRest)
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
    ForEachPixel<repeat, false>(move, doneCopies - repeat,
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

constexpr std::size_t anyBytes = std::numeric_limits<std::size_t>::max();

template <typename Wide, typename Narrow, std::size_t least, std::size_t most, std::size_t repeat>
void MoveRepeated(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                  std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    const bool isTailNarrow = (bytes - 1) % Wide::bytes < Narrow::bytes;
    if constexpr (most > maxInlineBytes)
        if (bytes > maxInlineBytes)
            return MoveByCopy<repeat>(move, source, destination, destinationPixels);
    if constexpr (least < Wide::bytes)
        if (bytes < Wide::bytes)
            return MoveByOne<Wide, Narrow, repeat>(move, source, destination, destinationPixels);
    if constexpr (most > 2 * Wide::bytes)
        if (bytes > 2 * Wide::bytes) {
            const auto method = isTailNarrow ? MoveByPieces<Wide, Narrow, repeat>
                                             : MoveByPieces<Wide, Wide, repeat>;
            return method(move, source, destination, destinationPixels);
        }
    const auto method =
        isTailNarrow ? MoveByTwo<Wide, Narrow, repeat> : MoveByTwo<Wide, Wide, repeat>;
    method(move, source, destination, destinationPixels);
}

// Pixels of `least` to `most` bytes, and at least as many as the narrow piece has, which is half as
// long as the wide one or as long.
template <typename Wide, typename Narrow, std::size_t least, std::size_t most = anyBytes>
void MovePixels(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                std::size_t destinationPixels)
{
    const auto method = move.repeat == 1   ? MoveRepeated<Wide, Narrow, least, most, 1>
                        : move.repeat == 2 ? MoveRepeated<Wide, Narrow, least, most, 2>
                                           : MoveRepeated<Wide, Narrow, least, most, 4>;
    method(move, source, destination, destinationPixels);
}

} // namespace
} // namespace zvk::Pelkraft
