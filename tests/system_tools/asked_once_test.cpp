#include "system_tools/processor_level.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

namespace {

std::atomic<int> questions{0};

} // namespace

// The companion's own is not linked into this program.
int zvk::SystemTools::GetProcessorLevel()
{
    ++questions;
    return 6;
}

namespace zvk::SystemTools {
namespace {

// The first uses of this program, so that they are the ones that ask.
TEST(Processor, IsAskedOnceForAllLimitsAndAnswersOfAllThreads)
{
    constexpr int threadCount = 8;
    std::latch start(threadCount);
    std::vector<std::jthread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back([&start, thread] {
            start.arrive_and_wait();
            for (int i = 0; i < 100; ++i)
                thread % 2 == 0 ? LimitSseVersion(7) : static_cast<void>(GetSseVersion());
        });
    threads.clear();
    for (int limit = 7; limit >= 0; --limit) {
        LimitSseVersion(limit);
        EXPECT_EQ(limit < 6 ? limit : 6, GetSseVersion());
    }
    EXPECT_EQ(1, questions);
}

} // namespace
} // namespace zvk::SystemTools
