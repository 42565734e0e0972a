#include "tests/dither/dither_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>
#include <numeric>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t side = 256;
using Numbers = std::vector<std::complex<double>>;

// The plain discrete Fourier transform of each row, turned into a column.
Numbers TransformRows(const Numbers& rows)
{
    std::array<std::complex<double>, side> turns;
    for (std::size_t i = 0; i != side; ++i)
        turns[i] = std::polar(1.0, -2 * std::numbers::pi * static_cast<double>(i) / side);
    Numbers columns(side * side);
    for (std::size_t row = 0; row != side; ++row)
        for (std::size_t frequency = 0; frequency != side; ++frequency) {
            double real = 0;
            double imaginary = 0;
            for (std::size_t x = 0; x != side; ++x) {
                const std::complex<double>& number = rows[row * side + x];
                const std::complex<double>& turn = turns[frequency * x % side];
                real += number.real() * turn.real() - number.imag() * turn.imag();
                imaginary += number.real() * turn.imag() + number.imag() * turn.real();
            }
            columns[frequency * side + row] = {real, imaginary};
        }
    return columns;
}

// The power of each frequency of a picture without its mean, and the mean power at each distance
// from frequency 0.
struct Spectrum
{
    explicit Spectrum(const std::vector<double>& picture)
    {
        const double mean = std::accumulate(picture.begin(), picture.end(), 0.0) / (side * side);
        Numbers numbers(picture.begin(), picture.end());
        for (std::complex<double>& number : numbers)
            number -= mean;
        numbers = TransformRows(TransformRows(numbers));
        std::array<int, side> counts = {};
        for (std::size_t i = 0; i != side * side; ++i) {
            power.push_back(std::norm(numbers[i]));
            rings[RingOf(i)] += power[i];
            ++counts[RingOf(i)];
        }
        for (std::size_t ring = 0; ring != side; ++ring)
            rings[ring] /= std::max(counts[ring], 1);
    }

    static std::size_t RingOf(std::size_t index)
    {
        const auto fold = [](std::size_t i) { return static_cast<double>(std::min(i, side - i)); };
        return static_cast<std::size_t>(std::hypot(fold(index / side), fold(index % side)));
    }

    // The highest power as a multiple of its ring's mean.
    double HighestPeak() const
    {
        double highest = 0;
        // The last rings hold a few frequencies of the corners, which are no sample of a mean.
        for (std::size_t i = 1; i != side * side; ++i)
            if (RingOf(i) < side / 2 * 11 / 8)
                highest = std::max(highest, power[i] / rings[RingOf(i)]);
        return highest;
    }

    // The most that a ring of coarse frequencies has, as a share of the mean power.
    double CoarsePower(std::size_t firstFine) const
    {
        const double mean =
            std::accumulate(power.begin(), power.end(), 0.0) / static_cast<double>(power.size());
        return *std::max_element(rings.begin() + 1,
                                 rings.begin() + static_cast<std::ptrdiff_t>(firstFine)) /
               mean;
    }

    std::vector<double> power;
    std::array<double, side> rings = {};
};

// Powers of noise with random phases go beyond 20 times their mean once in e^20 frequencies, and a
// picture has 65536.
constexpr double noPeak = 20;

TEST(DitherMask, HasEachRankOnce)
{
    std::vector<std::uint16_t> ranks = OwnMask();
    std::sort(ranks.begin(), ranks.end());
    for (std::size_t rank = 0; rank != ranks.size(); ++rank)
        ASSERT_EQ(rank, ranks[rank]);
}

TEST(DitherMask, HasASpectrumWithoutPeaksAndCoarseGrain)
{
    const std::vector<std::uint16_t> mask = OwnMask();
    const Spectrum spectrum(std::vector<double>(mask.begin(), mask.end()));
    EXPECT_LT(spectrum.HighestPeak(), noPeak);
    EXPECT_LT(spectrum.CoarsePower(32), 0.01);
}

TEST(DitherMask, SpreadsTheDotsOfEveryTone)
{
    for (const int ones : {6554, 16384, 32768, 49152, 58982}) {
        std::vector<double> dots;
        for (const std::uint16_t rank : OwnMask())
            dots.push_back(rank < ones ? 1 : 0);
        const Spectrum spectrum(dots);
        EXPECT_LT(spectrum.HighestPeak(), noPeak) << ones;
        EXPECT_LT(spectrum.CoarsePower(16), 0.1) << ones;
    }
}

// The same checks find the peaks of a regular grid and the grain of plain noise.
TEST(DitherMask, IsNeitherAGridNorNoise)
{
    std::vector<double> grid;
    for (std::size_t i = 0; i != side * side; ++i) {
        std::size_t rank = 0;
        for (std::size_t bit = 1; bit != side; bit *= 2) {
            const bool x = (i % side & bit) != 0;
            const bool y = (i / side & bit) != 0;
            rank = 4 * rank + (x != y ? 2 : 0) + (y ? 1 : 0);
        }
        grid.push_back(static_cast<double>(rank));
    }
    EXPECT_GT(Spectrum(grid).HighestPeak(), 10 * noPeak);
    const std::vector<std::uint16_t> noise = RandomMask(1);
    EXPECT_GT(Spectrum(std::vector<double>(noise.begin(), noise.end())).CoarsePower(32), 0.5);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
