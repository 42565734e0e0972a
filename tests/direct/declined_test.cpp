#include "direct/direct_plan.h"

#include <gtest/gtest.h>

#include <limits>

// No row asks for them: the public operations refuse them first.
namespace zvk::Pelkraft::TestSupport {
namespace {

bool IsServed(int factor)
{
    ConversionRequest request{{40, 3, 8, false}, {40, 3, 8, false}, 0, factor};
    request.repeats = true;
    DirectPlan plan;
    return MakeDirectPlan(plan, request);
}

TEST(DirectPlan, DeclinesRepeatsThatNoKernelHas)
{
    for (const int factor : {1, 2, 4, -1, -2, -4})
        EXPECT_TRUE(IsServed(factor)) << factor;
    for (const int factor :
         {3, 5, 8, -3, -8, 256, 258, 260, -2147483647, std::numeric_limits<int>::min()})
        EXPECT_FALSE(IsServed(factor)) << factor;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
