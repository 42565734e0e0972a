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
            for (int y = 0; y < side; ++y) {
                for (int x = 0; x < side; ++x)
                    wave += (field[static_cast<std::size_t>(y * side + x)] - mean) *
                            std::polar(1.0, -2 * pi * (u * x + v * y) / side);
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
    for (const int side : {2, 4, 8, 16, 32}) {
        std::vector<double> field;
        for (const unsigned char byte :
             RandomBytes(static_cast<std::size_t>(side * side), static_cast<std::uint32_t>(side)))
            field.push_back(byte);
        const auto expected = NaiveSpectrum(field, side);
        const auto power = RadialSpectrum(field, static_cast<std::size_t>(side));
        ASSERT_EQ(expected.size(), power.size());
        for (std::size_t k = 0; k < power.size(); ++k)
            EXPECT_NEAR(expected[k], power[k], 1e-9) << side << " " << k;
    }
}

TEST(Spectrum, FindsAWaveAndNothingInAnEvenField)
{
    std::vector<double> field;
    for (int i = 0; i < 64 * 64; ++i)
        field.push_back(std::cos(2 * pi * 5 * (i / 64) / 64));
    const auto power = RadialSpectrum(field, 64);
    for (std::size_t k = 0; k < power.size(); ++k)
        EXPECT_EQ(k == 5, power[k] > 1) << k;
    for (const double none : RadialSpectrum(std::vector<double>(256, 7.0), 16))
        EXPECT_EQ(0, none);
}

TEST(Spectrum, IsOneForWhiteNoise)
{
    std::vector<double> field;
    for (const unsigned char byte : RandomBytes(256 * 256, 3))
        field.push_back(byte % 2);
    const auto power = RadialSpectrum(field, 256);
    for (std::size_t k = 20; k < power.size(); ++k)
        EXPECT_NEAR(1, power[k], 0.5) << k;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
