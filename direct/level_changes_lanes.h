#pragma once

#include "direct/samples_lanes.h"

// The vector files of the samples share the changes between tones and levels, each sample in a
// byte, and those that keep the number. All of it has internal linkage.
namespace zvk::Pelkraft {
namespace {

// The top bit of each byte.
inline Lanes TopBits(Lanes v)
{
    return And(ShiftRight16<7>(v), Set8(1));
}

template <int depth>
struct ToLevels
{
    static SampleKernel Shorter() { return NarrowerKernels().quantize[depth - 1]; }

    static Lanes Of(Lanes v)
    {
        if constexpr (depth == 1)
            return TopBits(v);
        // The levels 1, 2 and 3 begin with 43, 128 and 213.
        const Lanes low = And(v, Set8(0x7f));
        const Lanes first = TopBits(Or(v, Add8(low, Set8(128 - 43))));
        const Lanes third = TopBits(And(v, Add8(low, Set8(128 + 128 - 213))));
        return Add8(Add8(first, TopBits(v)), third);
    }
};

template <int depth>
struct ToTones
{
    static SampleKernel Shorter() { return NarrowerKernels().stretch[depth - 1]; }

    static Lanes Of(Lanes v)
    {
        if constexpr (depth == 1)
            return Subtract8(Zero(), v);
        const Lanes twice = Or(v, ShiftLeft16<2>(v));
        return Or(twice, ShiftLeft16<4>(twice));
    }
};

template <typename Change>
void ChangeBytes(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    if (samples < laneSamples)
        return Change::Shorter()(source, destination, samples);
    ForBlocks<laneSamples>(
        samples, [=](std::size_t x) { Store(destination + x, Change::Of(Load(source + x))); });
}

void Cut(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    if (samples < laneSamples)
        return NarrowerKernels().cut(source, destination, samples);
    const Lanes low = Set16(0xff);
    ForBlocks<laneSamples>(samples, [=](std::size_t x) {
        const unsigned char* from = source + 2 * x;
        Store(destination + x,
              Gather<8>(Pack16(And(Load(from), low), And(Load(from + laneSamples), low))));
    });
}

void Extend(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    if (samples < laneSamples)
        return NarrowerKernels().extend(source, destination, samples);
    ForBlocks<laneSamples>(samples, [=](std::size_t x) {
        const Lanes dealt = Deal<8>(Load(source + x));
        unsigned char* to = destination + 2 * x;
        Store(to, UnpackLow<1>(dealt, Zero()));
        Store(to + laneSamples, UnpackHigh<1>(dealt, Zero()));
    });
}

} // namespace
} // namespace zvk::Pelkraft
