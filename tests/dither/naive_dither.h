#pragma once

#include <cstdint>
#include <vector>

// The dither by its formulas, sample by sample. It includes nothing of the library.
namespace zvk::Pelkraft::TestSupport {

using Bytes = std::vector<unsigned char>;

struct NaiveTones
{
    std::vector<std::uint64_t> inks;
    std::int64_t noInk = 0;
    std::int64_t fullInk = 255;
};

struct NaiveDither
{
    std::vector<NaiveTones> channels;
    int bits = 8;
    std::vector<std::uint16_t> mask;

    // The step of a sample at a place of the page.
    int StepOf(std::int64_t sample, std::size_t channel, std::int64_t x, std::int64_t y) const;

    // A row of interleaved samples.
    Bytes RowOf(const Bytes& row, std::int64_t x, std::int64_t y) const;
};

// A mask of random ranks, some of them more than once.
std::vector<std::uint16_t> RandomMask(unsigned seed);

} // namespace zvk::Pelkraft::TestSupport
