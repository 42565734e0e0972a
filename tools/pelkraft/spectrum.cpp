#include "tools/pelkraft/spectrum.h"

#include <cmath>
#include <complex>
#include <numeric>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double pi = 3.14159265358979323846;

using Waves = std::vector<std::complex<double>>;

// Splits into the even and the odd numbers, again and again.
void Transform(std::complex<double>* numbers, std::size_t count, std::size_t step)
{
    for (std::size_t i = 1, swapped = 0; i < count; ++i) {
        std::size_t bit = count / 2;
        for (; (swapped & bit) != 0; bit /= 2)
            swapped ^= bit;
        swapped ^= bit;
        if (i < swapped)
            std::swap(numbers[i * step], numbers[swapped * step]);
    }
    for (std::size_t half = 1; half < count; half *= 2) {
        for (std::size_t k = 0; k < half; ++k) {
            const std::complex<double> turn =
                std::polar(1.0, -pi * static_cast<double>(k) / static_cast<double>(half));
            for (std::size_t i = k; i < count; i += 2 * half) {
                std::complex<double>& low = numbers[i * step];
                std::complex<double>& high = numbers[(i + half) * step];
                const std::complex<double> turned = high * turn;
                high = low - turned;
                low += turned;
            }
        }
    }
}

// The frequency of a wave, which may run either way.
double FrequencyOf(std::size_t index, std::size_t side)
{
    return static_cast<double>(index <= side / 2 ? index : side - index);
}

} // namespace

std::vector<double> RadialSpectrum(std::vector<double> field, std::size_t side)
{
    const auto count = static_cast<double>(field.size());
    const double mean = std::accumulate(field.begin(), field.end(), 0.0) / count;
    double variance = 0;
    for (double& number : field) {
        number -= mean;
        variance += number * number / count;
    }
    std::vector<double> power(side / 2 + 1);
    if (variance == 0)
        return power;
    Waves waves(field.begin(), field.end());
    for (std::size_t i = 0; i < side; ++i)
        Transform(waves.data() + i * side, side, 1);
    for (std::size_t i = 0; i < side; ++i)
        Transform(waves.data() + i, side, side);
    std::vector<double> members(power.size());
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x) {
            const auto k = static_cast<std::size_t>(
                std::lround(std::hypot(FrequencyOf(x, side), FrequencyOf(y, side))));
            if (k >= power.size())
                continue;
            power[k] += std::norm(waves[y * side + x]) / (count * variance);
            ++members[k];
        }
    }
    for (std::size_t k = 0; k < power.size(); ++k)
        power[k] /= members[k];
    return power;
}

} // namespace zvk::Pelkraft::Client
