#include "tests/direct/levels.h"
#include "tests/plan/planned_runs.h"

#include <gtest/gtest.h>

#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(Plan, IsRunByFourThreadsAtOnce)
{
    for (const int level : LevelsOfThisProcessor()) {
        const std::vector<ConversionCase> cases = PlannedCases(level);
        std::vector<Plan> plans;
        plans.reserve(cases.size());
        for (const ConversionCase& tested : cases)
            plans.push_back(PlanOf(tested, level));
        std::vector<std::jthread> threads;
        for (std::uint32_t thread = 0; thread != 4; ++thread)
            threads.emplace_back([&, thread] {
                for (std::uint32_t round = 0; round != 20; ++round)
                    for (std::size_t i = 0; i != cases.size(); ++i)
                        (void)RunTwice(plans[i], cases[i], 100 * thread + 2 * round);
            });
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
