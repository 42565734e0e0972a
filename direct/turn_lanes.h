#pragma once

#include "common/inlining.h"
#include "direct/samples_lanes.h"

// TurnVector and MirrorShort for vectors of one or two lanes.
namespace zvk::Pelkraft {
namespace {

// Each half of a byte has its samples turned round, in the low half of a byte.
template <int depth>
constexpr LaneBytes MakeTurnedHalves(int places)
{
    LaneBytes turned{};
    for (int half = 0; half < 16; ++half) {
        const int v = depth == 1 ? (half & 1) << 3 | (half & 2) << 1 | (half & 4) >> 1 | half >> 3
                                 : (half & 3) << 2 | half >> 2;
        turned.bytes[half] = static_cast<unsigned char>(v << places);
    }
    return turned;
}

template <int depth>
constexpr LaneBytes turnedLow = MakeTurnedHalves<depth>(4);
template <int depth>
constexpr LaneBytes turnedHigh = MakeTurnedHalves<depth>(0);
constexpr LaneBytes turnSixteen{{15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}};

template <int depth>
Lanes TurnVector(Lanes v)
{
    const Lanes low = Shuffle(Broadcast(turnedLow<depth>.bytes), And(v, Set8(15)));
    const Lanes high =
        Shuffle(Broadcast(turnedHigh<depth>.bytes), And(ShiftRight16<4>(v), Set8(15)));
    return TurnLanes(Shuffle(Or(low, high), Broadcast(turnSixteen.bytes)));
}

// A function of its own, so that the longer rows do not pay for its frame.
template <int depth>
PELKRAFT_NEVER_INLINE void MirrorShort(const unsigned char* plane, std::size_t end,
                                       unsigned char* destination, std::size_t samples)
{
    if (samples * depth < 8 * sizeof(LaneBytes))
        MirrorWords<depth>(plane, end * depth, destination, samples * depth);
    else
        NarrowerKernels().mirror[depth - 1](plane, end, destination, samples);
}

} // namespace
} // namespace zvk::Pelkraft
