#pragma once

#include "direct/samples_lanes.h"

// Unpacking over the lanes of the file that includes it. That file has UnpackBlock, which gives
// unpackBlock samples of one byte or two.
namespace zvk::Pelkraft {
namespace {

// The samples of the last byte, which are fewer than a byte holds.
template <int depth, int sampleBytes>
void UnpackLastByte(unsigned packed, unsigned char* destination, std::size_t samples)
{
    for (std::size_t k = 0; k < samples; ++k) {
        const unsigned level = packed >> (8 - depth * (k + 1)) & ((1u << depth) - 1);
        for (int i = 0; i < sampleBytes; ++i)
            *destination++ = static_cast<unsigned char>(level);
    }
}

template <int depth, int sampleBytes>
void Unpack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    constexpr std::size_t perByte = 8 / depth;
    const std::size_t whole = samples / perByte * perByte;
    if (whole < unpackBlock<depth>) {
        const SampleKernels& narrower = NarrowerKernels();
        const auto kernel = (sampleBytes == 1 ? narrower.unpack : narrower.unpackWiden)[depth - 1];
        return kernel(source, destination, samples);
    }
    ForBlocks<unpackBlock<depth>>(whole, [=](std::size_t x) {
        UnpackBlock<depth, sampleBytes>(source + x / perByte, destination + x * sampleBytes);
    });
    if (whole < samples)
        UnpackLastByte<depth, sampleBytes>(source[whole / perByte],
                                           destination + whole * sampleBytes, samples - whole);
}

} // namespace
} // namespace zvk::Pelkraft
