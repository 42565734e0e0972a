#include "dither/dither_kernels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::PortableRoad {
namespace {

constexpr std::size_t blockSamples = 64;

template <typename Sample>
using Block = std::array<Sample, blockSamples>;

template <typename Sample>
void LoadBlock(Block<Sample>& block, const unsigned char* samples, std::size_t count)
{
    std::memcpy(block.data(), samples, count * sizeof(Sample));
}

// All of a block is read before a step is written, since the steps may take the samples' place.
template <typename Sample>
void DitherBlock(const DitherRow& row, std::size_t first, std::size_t phase, std::size_t count)
{
    Block<Sample> samples = {};
    Block<Sample> other = {};
    LoadBlock(samples, row.source + first * sizeof(Sample), count);
    LoadBlock(other, row.flips + phase * sizeof(Sample), count);
    for (std::size_t k = 0; k != blockSamples; ++k)
        samples[k] ^= other[k];
    Block<unsigned char> steps = {};
    const unsigned char* limits = row.limits + phase * sizeof(Sample);
    for (int plane = 0; plane != row.planes; ++plane, limits += row.planeBytes) {
        LoadBlock(other, limits, count);
        for (std::size_t k = 0; k != blockSamples; ++k)
            steps[k] = static_cast<unsigned char>(steps[k] + (samples[k] > other[k] ? 1 : 0));
    }
    std::memcpy(row.target + first, steps.data(), count);
}

template <typename Sample>
void Dither(const DitherRow& row)
{
    std::size_t phase = row.phase;
    for (std::size_t x = 0, count = 0; x != row.samples; x += count) {
        count = std::min({blockSamples, row.samples - x, row.period - phase});
        DitherBlock<Sample>(row, x, phase, count);
        phase = (phase + count) % row.period;
    }
}

constexpr DitherKernels kernels = {Dither<std::uint8_t>, Dither<std::uint16_t>};

} // namespace

const DitherKernels& GetDitherKernels()
{
    return kernels;
}

} // namespace zvk::Pelkraft::PortableRoad
