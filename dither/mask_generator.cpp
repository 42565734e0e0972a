#include "dither/mask_generator.h"

#include "dither/mask.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>

namespace zvk::Pelkraft {
namespace {

using Weights = std::array<std::int64_t, maskSide>;

// The weights of distances around a torus: those that are given, then 0.
template <std::size_t count>
constexpr Weights AroundTorus(const std::array<std::int64_t, count>& given)
{
    Weights weights = {};
    for (std::size_t distance = 0; distance != count; ++distance) {
        weights[distance] = given[distance];
        weights[(maskSide - distance) % maskSide] = given[distance];
    }
    return weights;
}

// Bells of height 32768: the first one reaches to the neighbours, the second one, four times as
// wide, decides between places that the first one finds equal.
constexpr std::array<std::int64_t, 8> nearBell = {32768, 26239, 13471, 4435, 936, 127, 11, 1};
constexpr std::array<std::int64_t, 25> wideBell = {
    32768, 32316, 30997, 28918, 26239, 23155, 19875, 16592, 13471, 10638, 8171, 6104, 4435,
    3134,  2154,  1440,  936,   592,   364,   218,   127,   72,    39,    21,   11};

// Weighs the ones in the surroundings of each place.
template <std::size_t reach>
class Crowding
{
public:
    explicit Crowding(const std::array<std::int64_t, reach>& bell)
        : weights(AroundTorus(bell)), sums(maskPlaces)
    {}

    std::int64_t At(std::size_t place) const { return sums[place]; }

    // Adds a one, or takes one away where the sign is -1.
    void Change(std::size_t place, std::int64_t sign)
    {
        constexpr std::size_t first = maskSide - reach + 1;
        for (std::size_t row = first; row != maskSide + reach; ++row) {
            const std::size_t y = (place / maskSide + row) % maskSide;
            for (std::size_t column = first; column != maskSide + reach; ++column)
                sums[y * maskSide + (place + column) % maskSide] +=
                    sign * weights[row % maskSide] * weights[column % maskSide];
        }
    }

private:
    Weights weights;
    std::vector<std::int64_t> sums;
};

// A number that decides between equal places. No two places have the same one.
std::uint32_t TieBreak(std::size_t place)
{
    std::uint32_t x = static_cast<std::uint32_t>(place) * 2654435761U + 1U;
    x ^= x >> 16;
    x *= 0x7feb352dU;
    x ^= x >> 15;
    x *= 0x846ca68bU;
    return x ^ x >> 16;
}

// Ones and zeros on the torus.
class Dots
{
public:
    Dots()
    {
        for (std::size_t place = 0; place != maskPlaces; ++place)
            tieBreaks[place] = TieBreak(place);
    }

    void Set(std::size_t place, bool one)
    {
        ones[place] = one ? 1 : 0;
        near.Change(place, one ? 1 : -1);
        wide.Change(place, one ? 1 : -1);
    }

    std::size_t FindTightestCluster() const
    {
        return FindFirst(1, [this](std::size_t place, std::size_t best) {
            return std::tuple(near.At(best), wide.At(best), tieBreaks[place]) <
                   std::tuple(near.At(place), wide.At(place), tieBreaks[best]);
        });
    }

    std::size_t FindLargestVoid() const
    {
        return FindFirst(0, [this](std::size_t place, std::size_t best) {
            return std::tuple(near.At(place), wide.At(place), tieBreaks[place]) <
                   std::tuple(near.At(best), wide.At(best), tieBreaks[best]);
        });
    }

    // The places with the smallest tie breaks.
    void SetAnyhow(std::size_t count)
    {
        std::vector<std::size_t> order(maskPlaces);
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::sort(order.begin(), order.end(), [this](std::size_t one, std::size_t other) {
            return tieBreaks[one] < tieBreaks[other];
        });
        for (std::size_t i = 0; i != count; ++i)
            Set(order[i], true);
    }

private:
    // The place of this kind that goes before all others.
    template <typename Before>
    std::size_t FindFirst(unsigned char kind, const Before& goesBefore) const
    {
        const auto begin = std::find(ones.begin(), ones.end(), kind) - ones.begin();
        auto best = static_cast<std::size_t>(begin);
        for (std::size_t place = best + 1; place != maskPlaces; ++place)
            if (ones[place] == kind && goesBefore(place, best))
                best = place;
        return best;
    }

    std::vector<unsigned char> ones = std::vector<unsigned char>(maskPlaces);
    std::vector<std::uint32_t> tieBreaks = std::vector<std::uint32_t>(maskPlaces);
    Crowding<nearBell.size()> near{nearBell};
    Crowding<wideBell.size()> wide{wideBell};
};

// Moves ones from clusters to voids until that changes nothing.
void SpreadOut(Dots& dots)
{
    for (;;) {
        const std::size_t cluster = dots.FindTightestCluster();
        dots.Set(cluster, false);
        const std::size_t largestVoid = dots.FindLargestVoid();
        dots.Set(largestVoid, true);
        if (largestVoid == cluster)
            return;
    }
}

} // namespace

std::vector<std::uint16_t> MakeMask()
{
    constexpr std::size_t startCount = maskPlaces / 10;
    Dots start;
    start.SetAnyhow(startCount);
    SpreadOut(start);

    std::vector<std::uint16_t> ranks(maskPlaces);
    Dots dots = start;
    for (std::size_t rank = startCount; rank-- != 0;) {
        const std::size_t cluster = dots.FindTightestCluster();
        dots.Set(cluster, false);
        ranks[cluster] = static_cast<std::uint16_t>(rank);
    }
    dots = start;
    for (std::size_t rank = startCount; rank != maskPlaces; ++rank) {
        const std::size_t largestVoid = dots.FindLargestVoid();
        dots.Set(largestVoid, true);
        ranks[largestVoid] = static_cast<std::uint16_t>(rank);
    }
    return ranks;
}

} // namespace zvk::Pelkraft
