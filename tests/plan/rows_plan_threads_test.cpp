#include "tests/direct/levels.h"
#include "tests/plan/rows_case.h"

#include <gtest/gtest.h>

#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

TEST(RowsPlan, IsRunBySixteenThreadsAtOnce)
{
    const std::vector<NaiveJoin> joins = {
        {{300, 4, 8, false}, {300, 4, 8, true}},
        {{300, 4, 8, false}, {300, 5, 16, true}, true, {3, -1, -1002, 0, 0}, 1, true},
        {{300, 4, 2, true}, {600, 4, 1, true}, false, {}, 2, true, NaiveSamples::AsTones, true},
        {{40, 3, 8, false}, {40, 130, 8, false}, true, std::vector<int>(130, 1)},
    };
    for (const int level : LevelsOfThisProcessor())
        for (const NaiveJoin& join : joins) {
            const RowsPlan plan(RequestOf(join, level));
            std::vector<std::jthread> threads;
            for (std::uint32_t thread = 0; thread != 16; ++thread)
                threads.emplace_back([&, thread] {
                    for (std::uint32_t round = 0; round != 5; ++round)
                        CheckRows(join, plan, 3, 100 * thread + round);
                });
        }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
