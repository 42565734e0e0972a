#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// An ink and the sample of one pixel, for a reference in doubles that follows the formula word by
// word.
struct NaiveInk
{
    std::array<int, 3> colour = {};
    int sample = 0;
    double opacity = 0;
};

inline double NaiveLight(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

inline int NaiveScreen(double light)
{
    const double value =
        light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
    return static_cast<int>(std::floor(255 * value + 0.5));
}

// The light of inks that are printed in this order on white paper.
inline std::array<double, 3> NaivePrint(const std::vector<NaiveInk>& inks, int none, int full,
                                        double gain)
{
    std::array<double, 3> light = {1, 1, 1};
    for (const NaiveInk& ink : inks) {
        double a = static_cast<double>(ink.sample - none) / (full - none);
        a = std::min(std::max(a, 0.0), 1.0);
        a = std::min(a + 4 * gain * a * (1 - a), 1.0);
        for (std::size_t c = 0; c < 3; ++c) {
            const double p = NaiveLight(ink.colour[c] / 255.0);
            const double t = p;
            const double o = ink.opacity;
            light[c] = (1 - a) * light[c] + a * ((1 - o) * light[c] * t + o * p);
        }
    }
    return light;
}

} // namespace zvk::Pelkraft::TestSupport
