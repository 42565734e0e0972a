#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

NaivePattern DrawnPattern()
{
    NaiveInColor inColor;
    inColor.inks = {0, 1};
    inColor.lines[1] = {{1}, {1}, {64}};
    inColor.lines[2] = {{1, 3}, {1, 0}, {128, 40}};
    NaivePattern pattern;
    pattern.version = 3;
    pattern.outInks = 2;
    pattern.inColors = {inColor};
    return pattern;
}

TEST(PatternEngines, BuildAndApplyOnSeveralThreadsAtOnce)
{
    const std::string text = DrawnPattern().Text();
    std::vector<Bytes> rows(6);
    std::vector<std::thread> threads;
    const Bytes source = RandomSteps(2000, 9);
    for (std::size_t i = 0; i < rows.size(); ++i)
        threads.emplace_back([&, i] {
            DotWeavePattern pattern =
                Load(text, i % 2 == 0 ? DotWeavePattern::X86 : DotWeavePattern::Sse);
            rows[i] = Apply(pattern, source);
        });
    for (std::thread& thread : threads)
        thread.join();
    NaiveSimulation naive(DrawnPattern());
    const Bytes expected = naive.Row(source);
    for (const Bytes& row : rows)
        EXPECT_EQ(row, expected);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
