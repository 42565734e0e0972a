#include "pelkraft/dither.hpp"
#include "tests/dither/naive_dither.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

#include <utility>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(DitherPlans, DoWhatTheFunctionsDo)
{
    const NaiveDither naive = {{{{0, 1, 5}, 0, 255}, {{0, 7}, 200, 3}}, 8, RandomMask(3)};
    const DitherSpec spec = {8, {{{0, 1, 5}}, {{0, 7}, 200, 3}}, PLK_ROAD_PORTABLE, naive.mask};
    DitherPlan plan(spec);
    EXPECT_EQ(plan.GetFacts().source_pixel_bytes, 2U);
    const DitherPlan copy = plan;
    const DitherPlan moved = std::move(plan);
    const Bytes row = RandomBytes(600, 1);
    for (const DitherPlan* same : {&copy, &moved}) {
        Bytes steps(600);
        same->Run(-1, 300, 1, 300, SourceRows(row, 600), TargetRows(steps, 600));
        EXPECT_EQ(steps, naive.RowOf(row, -1, 300));
    }
}

TEST(DitherPlans, TakeTheLibrarysMask)
{
    const std::uint16_t* own = plk_dither_mask();
    const NaiveDither naive = {{{{0, 3}, 0, 65535}}, 16, {own, own + 65536}};
    const DitherPlan plan({16, {{{0, 3}, 0, 65535}}});
    const Bytes row = RandomBytes(900, 1);
    Bytes steps(450);
    plan.Run(0, 0, 1, 450, SourceRows(row, 0), TargetRows(steps, 0));
    EXPECT_EQ(steps, naive.RowOf(row, 0, 0));
}

std::string Refusal(const DitherSpec& spec)
{
    try {
        const DitherPlan plan(spec);
    } catch (const PelkraftError& error) {
        return std::string(error.GetField()) + ": " + error.what();
    }
    return "none";
}

TEST(DitherPlans, ThrowTheRecordOfARefusal)
{
    EXPECT_EQ(Refusal({8, {{{0, 3}}, {{0, 3, 2}}}}),
              "tones[1].inks[2]: tones[1].inks[2] is 2; it must be more than the ink of the step "
              "before it, 3");
    EXPECT_EQ(Refusal({8, {{{0, 3}}}, PLK_ROAD_AUTOMATIC, std::vector<std::uint16_t>(65535)}),
              "mask: mask has 65535 ranks; it must have 65536, or none");
    EXPECT_EQ(Refusal({8, {}}), "none");
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
