#include "tools/pelkraft/spectrum.h"

#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Client::RadialSpectrum;

constexpr double pi = 3.14159265358979323846;

// Each wave summed up for itself.
std::vector<double> NaiveSpectrum(const std::vector<double>& field, int side)
{
    double mean = 0;
    for (const double number : field)
        mean += number / static_cast<double>(field.size());
    double variance = 0;
    for (const double number : field)
        variance += (number - mean) * (number - mean) / static_cast<double>(field.size());
    std::vector<double> sums(static_cast<std::size_t>(side / 2 + 1));
    std::vector<double> counts(sums.size());
    for (int v = -side / 2 + 1; v <= side / 2; ++v) {
        for (int u = -side / 2 + 1; u <= side / 2; ++u) {
            std::complex<double> wave = 0;
            std::size_t at = 0;
            for (int y = 0; y < side; ++y) {
                for (int x = 0; x < side; ++x)
                    wave +=
                        (field[at++] - mean) * std::polar(1.0, -2 * pi * (u * x + v * y) / side);
            }
            const long k = std::lround(std::sqrt(u * u + v * v));
            if (k > side / 2)
                continue;
            sums[static_cast<std::size_t>(k)] +=
                std::norm(wave) / (static_cast<double>(field.size()) * variance);
            ++counts[static_cast<std::size_t>(k)];
        }
    }
    for (std::size_t k = 0; k < sums.size(); ++k)
        sums[k] /= counts[k];
    return sums;
}

TEST(Spectrum, EqualsTheSumOfEachWave)
{
    for (const std::size_t side : {2U, 4U, 8U, 16U, 32U}) {
        std::vector<double> field;
        for (const unsigned char byte : RandomBytes(side * side, static_cast<std::uint32_t>(side)))
            field.push_back(byte);
        const auto expected = NaiveSpectrum(field, static_cast<int>(side));
        const auto power = RadialSpectrum(field, side);
        ASSERT_EQ(expected.size(), power.size());
        for (std::size_t k = 0; k < power.size(); ++k)
            EXPECT_NEAR(expected[k], power[k], 1e-9) << side << " " << k;
    }
}

TEST(Spectrum, FindsAWaveAndNothingInAnEvenField)
{
    std::vector<double> field;
    for (int y = 0; y < 64; ++y)
        field.insert(field.end(), 64, std::cos(2 * pi * 5 * y / 64));
    const auto power = RadialSpectrum(field, 64);
    for (std::size_t k = 0; k < power.size(); ++k)
        EXPECT_EQ(k == 5, power[k] > 1) << k;
    for (const double none : RadialSpectrum(std::vector<double>(256, 7.0), 16))
        EXPECT_EQ(0, none);
}

TEST(Spectrum, IsOneForWhiteNoise)
{
    std::vector<double> field;
    for (const unsigned char byte : RandomBytes(std::size_t{256} * 256, 3))
        field.push_back(byte % 2);
    const auto power = RadialSpectrum(field, 256);
    for (std::size_t k = 20; k < power.size(); ++k)
        EXPECT_NEAR(1, power[k], 0.5) << k;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
