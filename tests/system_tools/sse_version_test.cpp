#include "common/road.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <climits>
#include <thread>
#include <vector>

namespace zvk::SystemTools {
namespace {

int LevelOfThisProcessor()
{
#if defined(__x86_64__) || defined(__i386__)
    // The compiler's runtime asks the processor in a way of its own.
    __builtin_cpu_init();
    const bool meetsLevel[] = {
        __builtin_cpu_supports("sse") != 0,
        __builtin_cpu_supports("sse2") != 0,
        __builtin_cpu_supports("ssse3") != 0,
        __builtin_cpu_supports("sse4.1") != 0,
        __builtin_cpu_supports("sse4.2") != 0,
        __builtin_cpu_supports("avx2") != 0,
        __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
            __builtin_cpu_supports("avx512vl") != 0 && __builtin_cpu_supports("avx512vbmi") != 0,
    };
    int level = 0;
    while (level < 7 && meetsLevel[level])
        ++level;
    return level;
#else
    return Pelkraft::hasVectorRoad ? 3 : 0;
#endif
}

class SseVersion : public testing::Test
{
protected:
    ~SseVersion() override { LimitSseVersion(INT_MAX); }
};

TEST_F(SseVersion, IsTheLevelOfThisProcessor)
{
    EXPECT_EQ(LevelOfThisProcessor(), GetSseVersion());
    EXPECT_EQ(LevelOfThisProcessor(), GetSseVersion());
}

TEST_F(SseVersion, IsLoweredToTheLimitAndNeverRaised)
{
    const int own = LevelOfThisProcessor();
    for (int limit = 0; limit <= 9; ++limit) {
        LimitSseVersion(limit);
        EXPECT_EQ(limit < own ? limit : own, GetSseVersion()) << "limit " << limit;
    }
}

TEST_F(SseVersion, ObeysTheLastLimitAlone)
{
    const int own = LevelOfThisProcessor();
    LimitSseVersion(0);
    EXPECT_EQ(0, GetSseVersion());
    LimitSseVersion(7);
    EXPECT_EQ(own, GetSseVersion());
}

TEST_F(SseVersion, TakesALimitBelowZeroAsZero)
{
    LimitSseVersion(-1);
    EXPECT_EQ(0, GetSseVersion());
    LimitSseVersion(INT_MIN);
    EXPECT_EQ(0, GetSseVersion());
}

TEST_F(SseVersion, IsAlwaysOneOfTheLimitsThatThreadsSet)
{
    const int own = LevelOfThisProcessor();
    LimitSseVersion(1);
    std::thread changer([] {
        for (int i = 0; i < 2000; ++i)
            LimitSseVersion(i % 2 == 0 ? 1 : 2);
    });
    std::vector<std::thread> askers;
    askers.reserve(4);
    for (int i = 0; i < 4; ++i) {
        askers.emplace_back([own] {
            for (int j = 0; j < 2000; ++j) {
                const int level = GetSseVersion();
                EXPECT_TRUE(level == (own < 1 ? own : 1) || level == (own < 2 ? own : 2)) << level;
            }
        });
    }
    changer.join();
    for (std::thread& asker : askers)
        asker.join();
}

} // namespace
} // namespace zvk::SystemTools
