#pragma once

#include "common/inlining.h"
#include "direct/samples_lanes.h"

// Unpacking over the lanes of the file that includes it. That file has UnpackBlock, which gives
// unpackBlock samples of one byte or two.
namespace zvk::Pelkraft {
namespace {

// The samples of the last byte, which are fewer than a byte holds.
template <int depth, int sampleBytes>
void UnpackLastByte(unsigned packed, unsigned char* destination, std::size_t samples)
{
    const std::uint64_t levels = UnpackWord<depth>(packed);
    if constexpr (sampleBytes == 1) {
        StoreFewLittle(destination, samples, levels);
    } else {
        unsigned char twice[16];
        for (int i = 0; i < 16; ++i)
            twice[i] = static_cast<unsigned char>(levels >> i / 2 * 8);
        std::memcpy(destination, twice, 2 * samples);
    }
}

template <int depth, int sampleBytes>
PELKRAFT_NEVER_INLINE void UnpackShort(const unsigned char* source, unsigned char* destination,
                                       std::size_t samples)
{
    const SampleKernels& narrower = NarrowerKernels();
    (sampleBytes == 1 ? narrower.unpack : narrower.unpackWiden)[depth - 1](source, destination,
                                                                           samples);
}

// Unpacks a block or more to bytes, on the level that can store a part of a vector.
template <int depth>
void UnpackInParts(const unsigned char* source, unsigned char* destination, std::size_t samples);

template <int depth, int sampleBytes>
void Unpack(const unsigned char* source, unsigned char* destination, std::size_t samples)
{
    constexpr std::size_t block = unpackBlock<depth>;
    if (samples < block)
        return UnpackShort<depth, sampleBytes>(source, destination, samples);
    if constexpr (laneCount == 4 && sampleBytes == 1) {
        UnpackInParts<depth>(source, destination, samples);
    } else {
        constexpr std::size_t perByte = 8 / depth;
        const std::size_t whole = samples / perByte * perByte;
        ForBlocks<block>(whole, [=](std::size_t x) {
            UnpackBlock<depth, sampleBytes>(source + x / perByte, destination + x * sampleBytes);
        });
        if (whole < samples)
            UnpackLastByte<depth, sampleBytes>(source[whole / perByte],
                                               destination + whole * sampleBytes, samples - whole);
    }
}

} // namespace
} // namespace zvk::Pelkraft
