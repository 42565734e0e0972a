#include "tests/plan/planned_runs.h"

#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {

Bytes RunOn(const Plan& plan, const ConversionCase& tested, const Bytes& source,
            const Bytes& before, void (*run)(const Plan&, const unsigned char*, unsigned char*))
{
    const GuardedBuffer from(source);
    const GuardedBuffer to(before);
    run(plan, from.data(), to.data());
    EXPECT_TRUE(source == from.bytes());
    Bytes after = to.bytes();
    ForgetLeftPacked(tested, after);
    return after;
}

Bytes ExpectedOf(const ConversionCase& tested, const Bytes& source, const Bytes& before)
{
    Bytes expected =
        NaiveConvert(tested.source, source, tested.destination, before, tested.operation);
    ForgetLeftPacked(tested, expected);
    return expected;
}

std::vector<ConversionCase> PlannedCases(int level)
{
    return {
        CaseOf({1000, 4, 8, false}, {1000, 4, 8, true}, level),
        CaseOf({1000, 4, 16, true}, {1000, 4, 8, false}, level),
        CaseOf({1000, 17, 8, true}, {1000, 17, 16, false}, level),
        CaseOf({999, 3, 16, false}, {999, 3, 1, true}, level),
        CaseOf({999, 16, 2, true}, {1998, 16, 16, false}, level, RepeatBy(-2)),
        CaseOf({999, 16, 1, true}, {999, 16, 8, true}, level),
        CaseOf({999, 3, 8, false}, {999, 3, 8, false}, level, MapTo({2, -1, 0})),
        CaseOf({50, 3, 8, false}, {50, 65, 8, false}, level, MapTo(std::vector<int>(65, 1))),
    };
}

Bytes RunTwice(const Plan& plan, const ConversionCase& tested, std::uint32_t seed)
{
    const Bytes source = RandomBytes(NaiveRowBytes(tested.source), seed);
    const Bytes before = RandomBytes(NaiveRowBytes(tested.destination), seed + 1);
    const Bytes expected = ExpectedOf(tested, source, before);
    Bytes first = RunOn(plan, tested, source, before, RunPlan);
    EXPECT_TRUE(expected == first) << Describe(tested);
    EXPECT_TRUE(expected == RunOn(plan, tested, source, before, RunPlan)) << Describe(tested);
    return first;
}

} // namespace zvk::Pelkraft::TestSupport
