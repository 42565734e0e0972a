#pragma once

#include "direct/samples_lanes.h"

// The mirror of a packed plane, over the lanes of the file that includes it. That file has
// TurnVector, which turns the samples of each byte and the bytes of a vector round.
namespace zvk::Pelkraft {
namespace {

// A vector of a plane's bits from bit `shift` of the first byte on. The mask has the bits that come
// from that byte's place; shift 0 must not read the byte after the vector.
struct BitShift
{
    explicit BitShift(int bits)
        : shift(bits), fromFirst(Set8(0xff << bits & 0xff)), fromNext(Set8(0xff >> (8 - bits)))
    {}

    Lanes LoadFrom(const unsigned char* bytes) const
    {
        const Lanes first = And(ShiftLeft16By(Load(bytes), shift), fromFirst);
        const Lanes next = And(ShiftRight16By(Load(bytes + 1), 8 - shift), fromNext);
        return Or(first, next);
    }

    int shift;
    Lanes fromFirst;
    Lanes fromNext;
};

template <int depth>
void MirrorVectors(const MirroredBits& bits, unsigned char* destination)
{
    const std::size_t whole = bits.count / 8;
    // The source of destination byte x starts at last - x, for a whole vector.
    const unsigned char* last = bits.plane + bits.end / 8 - laneSamples;
    const int shift = static_cast<int>(bits.end % 8);
    if (shift == 0) {
        ForBlocks<laneSamples>(whole, [=](std::size_t x) {
            Store(destination + x, TurnVector<depth>(Load(last - x)));
        });
    } else {
        const BitShift shifted(shift);
        ForBlocks<laneSamples>(whole, [=](std::size_t x) {
            Store(destination + x, TurnVector<depth>(shifted.LoadFrom(last - x)));
        });
    }
    if (bits.count % 8 != 0)
        MirrorLastBits<depth>(bits, destination);
}

template <int depth>
void Mirror(const unsigned char* plane, std::size_t end, unsigned char* destination,
            std::size_t samples)
{
    const MirroredBits bits{plane, end * depth, samples * depth};
    if (bits.count >= 8 * laneSamples)
        MirrorVectors<depth>(bits, destination);
    else if constexpr (laneCount == 1)
        MirrorWords<depth>(bits, destination);
    else
        NarrowerKernels().mirror[depth - 1](plane, end, destination, samples);
}

} // namespace
} // namespace zvk::Pelkraft
