#include "tests/dither/dither_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t side = 256;
// Elsewhere all tones would take minutes.
#ifdef PELKRAFT_ALL_TONES
constexpr int toneStep = 1;
#else
constexpr int toneStep = 97;
#endif

// The share of full ink in an area of one tone, the mask's whole period.
class EvenArea
{
public:
    explicit EvenArea(const std::vector<std::uint32_t>& newInks)
        : inks(newInks), area(side * side), steps(side * side)
    {
        NaiveDither naive;
        naive.bits = 16;
        naive.mask = OwnMask();
        naive.channels = {{{inks.begin(), inks.end()}, 0, 65535}};
        dither = HandleOf(naive);
    }

    double ShareOf(int tone)
    {
        std::fill(area.begin(), area.end(), static_cast<std::uint16_t>(tone));
        const plk_source from = SourceOf(area.data(), area.size() * 2, side * 2);
        const plk_target to = TargetOf(steps.data(), steps.size(), side);
        EXPECT_EQ(plk_dither_run(dither.get(), 0, 0, side, side, &from, &to, nullptr), PLK_OK);
        double sum = 0;
        for (std::size_t step = 0; step != inks.size(); ++step)
            sum += static_cast<double>(inks[step]) *
                   static_cast<double>(std::count(steps.begin(), steps.end(), step));
        return sum / (side * side) / inks.back();
    }

private:
    std::vector<std::uint32_t> inks;
    DitherHandle dither;
    std::vector<std::uint16_t> area;
    Bytes steps;
};

TEST(DitheredTones, AreKeptOneByOne)
{
    EvenArea area({0, 400, 1000, 2000});
    double last = -1;
    double worst = 0;
    for (int tone = 0; tone <= 65535; tone += toneStep) {
        const double share = area.ShareOf(tone);
        worst = std::max(worst, std::abs(share - tone / 65535.0));
        // No tone is lost, and none goes back. Fewer than 65,536 ranks lie between two steps.
        ASSERT_GE(share, last) << tone;
        last = share;
    }
    EXPECT_LE(worst, 1e-5);
    EXPECT_EQ(area.ShareOf(0), 0);
    EXPECT_EQ(area.ShareOf(65535), 1);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
