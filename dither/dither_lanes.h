#pragma once

#include "dither/dither_kernels.h"

// The vector files of the dither share its kernels, over the lanes of the file that includes this
// one. All of it has internal linkage.
namespace zvk::Pelkraft {
namespace {

// Samples of 8 bits in a vector.
constexpr std::size_t laneSamples = std::size_t{16} * laneCount;

// The ends of rows go to these kernels.
inline const DitherKernels& NarrowerDither()
{
    if constexpr (laneCount == 1)
        return PortableRoad::GetDitherKernels();
    else if constexpr (laneCount == 2)
        return VectorRoad::GetDitherKernels();
    else
        return Avx2Road::GetDitherKernels();
}

// The steps of a vector of samples of 8 bits.
inline Lanes StepsOfBytes(const unsigned char* source, const DitherRow& row, std::size_t phase)
{
    const Lanes samples = Xor(Load(source), Load(row.flips + phase));
    const unsigned char* limits = row.limits + phase;
    Lanes steps = Set8(row.planes);
    for (int plane = 0; plane != row.planes; ++plane, limits += row.planeBytes)
        steps = CountDownWhereAtMost8(steps, samples, Load(limits));
    return steps;
}

// The steps of half as many samples of 16 bits, in words.
inline Lanes StepsOfWords(const unsigned char* source, const DitherRow& row, std::size_t phase)
{
    const Lanes samples = Xor(Load(source), Load(row.flips + 2 * phase));
    const unsigned char* limits = row.limits + 2 * phase;
    Lanes steps = Set16(row.planes);
    for (int plane = 0; plane != row.planes; ++plane, limits += row.planeBytes)
        steps = CountDownWhereAtMost16(steps, samples, Load(limits));
    return steps;
}

template <int sampleBytes>
Lanes StepsOf(const DitherRow& row, std::size_t x, std::size_t phase)
{
    const unsigned char* source = row.source + x * sampleBytes;
    if constexpr (sampleBytes == 1)
        return StepsOfBytes(source, row, phase);
    else
        return Gather<8>(Pack16(StepsOfWords(source, row, phase),
                                StepsOfWords(source + laneSamples, row, phase + laneSamples / 2)));
}

template <int sampleBytes>
void Dither(const DitherRow& row)
{
    std::size_t phase = row.phase;
    std::size_t x = 0;
    for (; x + laneSamples <= row.samples; x += laneSamples) {
        Store(row.target + x, StepsOf<sampleBytes>(row, x, phase));
        phase += laneSamples;
        if (phase >= row.period)
            phase -= row.period;
    }
    if (x == row.samples)
        return;
    // No sample is read twice, since its step may have taken its place.
    DitherRow rest = row;
    rest.source += x * sampleBytes;
    rest.target += x;
    rest.samples -= x;
    rest.phase = phase;
    (sampleBytes == 1 ? NarrowerDither().bytes : NarrowerDither().words)(rest);
}

constexpr DitherKernels ditherKernels = {Dither<1>, Dither<2>};

} // namespace
} // namespace zvk::Pelkraft
