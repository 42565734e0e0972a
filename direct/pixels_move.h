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

// One to so many copies of each pixel side by side, each by `Copy`.
template <typename Copy>
[[gnu::always_inline]] inline void ForEachCopy(const PixelMove& move, const unsigned char* source,
                                               unsigned char* destination,
                                               std::size_t destinationPixels, Copy copy)
{
    const std::size_t bytes = move.pixelBytes;
    const std::size_t sourcePixels = (destinationPixels + move.repeat - 1) / move.repeat;
    // Unsigned, so that a step backwards wraps around.
    const std::size_t fromStep = move.mirrored ? std::size_t{0} - bytes : bytes;
    std::size_t from = move.mirrored ? (sourcePixels - 1) * bytes : 0;
    std::size_t left = destinationPixels;
    for (std::size_t pixel = 0; pixel < sourcePixels; ++pixel, from += fromStep) {
        const std::size_t copies = left < move.repeat ? left : move.repeat;
        for (std::size_t i = 0; i < copies; ++i, destination += bytes)
            copy(source + from, destination);
        left -= copies;
    }
}

// Pixels of one to two pieces, which overlap.
template <typename Piece>
void MoveByTwo(const PixelMove& move, const unsigned char* source, unsigned char* destination,
               std::size_t destinationPixels)
{
    const std::size_t second = move.pixelBytes - Piece::bytes;
    ForEachCopy(move, source, destination, destinationPixels,
                [second](const unsigned char* from, unsigned char* to) {
                    const auto start = Piece::Get(from);
                    const auto end = Piece::Get(from + second);
                    Piece::Put(to, start);
                    Piece::Put(to + second, end);
                });
}

// The same for pixels of two pieces and more.
template <typename Piece>
void MoveByPieces(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                  std::size_t destinationPixels)
{
    const std::size_t last = move.pixelBytes - Piece::bytes;
    ForEachCopy(move, source, destination, destinationPixels,
                [last](const unsigned char* from, unsigned char* to) {
                    for (std::size_t at = 0; at < last; at += Piece::bytes)
                        Piece::Put(to + at, Piece::Get(from + at));
                    Piece::Put(to + last, Piece::Get(from + last));
                });
}

void MoveByCopy(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                std::size_t destinationPixels)
{
    const std::size_t bytes = move.pixelBytes;
    ForEachCopy(
        move, source, destination, destinationPixels,
        [bytes](const unsigned char* from, unsigned char* to) { std::memcpy(to, from, bytes); });
}

// Pixels of at least as many bytes as the narrow piece.
template <typename Wide, typename Narrow>
void MovePixels(const PixelMove& move, const unsigned char* source, unsigned char* destination,
                std::size_t destinationPixels)
{
    if (move.pixelBytes > maxInlineBytes)
        MoveByCopy(move, source, destination, destinationPixels);
    else if (move.pixelBytes > 2 * Wide::bytes)
        MoveByPieces<Wide>(move, source, destination, destinationPixels);
    else if (move.pixelBytes >= Wide::bytes)
        MoveByTwo<Wide>(move, source, destination, destinationPixels);
    else if (move.pixelBytes <= 2 * Narrow::bytes)
        MoveByTwo<Narrow>(move, source, destination, destinationPixels);
    else
        MoveByPieces<Narrow>(move, source, destination, destinationPixels);
}

} // namespace
} // namespace zvk::Pelkraft
