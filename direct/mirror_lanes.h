#pragma once

#include "common/inlining.h"
#include "direct/samples_lanes.h"

// The mirror of a packed plane, over the lanes of the file that includes it. That file has
// TurnVector, which turns the samples of each byte and the bytes of a vector round, and MirrorShort
// for rows of less than a vector.
namespace zvk::Pelkraft {
namespace {

// Loads the bits of a plane from one inside a byte on; the masks have the places that each byte and
// its neighbour fill. The shift is never 0, since the neighbour of the last byte is read.
inline Lanes LoadShifted(const unsigned char* bytes, int shift, Lanes fromFirst, Lanes fromNext)
{
    const Lanes first = And(ShiftLeft16By(Load(bytes), shift), fromFirst);
    const Lanes next = And(ShiftRight16By(Load(bytes + 1), 8 - shift), fromNext);
    return Or(first, next);
}

template <int depth>
PELKRAFT_ALWAYS_INLINE inline void MirrorVectors(const unsigned char* plane, std::size_t end,
                                                 unsigned char* destination, std::size_t bits)
{
    const std::size_t whole = bits / 8;
    // The source of destination byte x starts at last - x, for a whole vector.
    const unsigned char* last = plane + end / 8 - laneSamples;
    const int shift = static_cast<int>(end % 8);
    if (shift == 0) {
        ForShortBlocks<laneSamples>(whole, [=](std::size_t x) {
            Store(destination + x, TurnVector<depth>(Load(last - x)));
        });
    } else {
        const Lanes fromFirst = Set8(0xff << shift & 0xff);
        const Lanes fromNext = Set8(0xff >> (8 - shift));
        ForBlocks<laneSamples>(whole, [=](std::size_t x) {
            Store(destination + x,
                  TurnVector<depth>(LoadShifted(last - x, shift, fromFirst, fromNext)));
        });
    }
    if (bits % 8 != 0)
        MirrorLastBits<depth>(plane, end, destination, bits);
}

template <int depth>
void Mirror(const unsigned char* plane, std::size_t end, unsigned char* destination,
            std::size_t samples)
{
    if (samples * depth < 8 * laneSamples)
        return MirrorShort<depth>(plane, end, destination, samples);
    MirrorVectors<depth>(plane, end * depth, destination, samples * depth);
}

} // namespace
} // namespace zvk::Pelkraft
