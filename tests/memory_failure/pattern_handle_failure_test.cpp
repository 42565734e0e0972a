#include "pelkraft/plan.h"
#include "tests/pattern/pattern_support.h"
#include "tests/support/counted_memory.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Handles of patterns without memory: a status, and nothing left behind.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Fails = CountedMemory::Fails;
// Makes a pattern or leaves null in its place.
using Making = std::function<plk_status(plk_pattern** pattern, plk_failure* failure)>;

Making Creation(const std::string& text, std::int32_t engine)
{
    return [=](plk_pattern** pattern, plk_failure* failure) {
        const plk_pattern_spec spec = {sizeof spec, engine};
        return plk_pattern_create(text.data(), text.size(), &spec, pattern, failure);
    };
}

plk_pattern* MakeOnce(const std::string& text)
{
    plk_pattern* pattern = nullptr;
    EXPECT_EQ(plk_pattern_create(text.data(), text.size(), nullptr, &pattern, nullptr), PLK_OK);
    return pattern;
}

// The number of the failed runs.
std::size_t SweepMaking(const Making& making, plk_status expected, Fails fails)
{
    for (std::size_t number = 0;; ++number) {
        char other = 0;
        auto* pattern = reinterpret_cast<plk_pattern*>(&other);
        plk_failure failure = {};
        failure.size = sizeof failure;
        CountedMemory memory;
        memory.FailAt(number, fails);
        memory.Start();
        const plk_status status = making(&pattern, &failure);
        memory.Stop();
        const bool failed = memory.CountFailed() != 0;
        EXPECT_EQ(status, failed ? PLK_NO_MEMORY : expected) << number;
        EXPECT_EQ(failure.status, status == PLK_OK ? 0 : status);
        EXPECT_EQ(pattern == nullptr, status != PLK_OK) << number;
        if (status != PLK_OK) {
            EXPECT_EQ(memory.CountHeld(), 0) << number;
        }
        plk_pattern_free(pattern);
        if (!failed || testing::Test::HasFailure())
            return number;
    }
}

void Sweep(const Making& making, plk_status expected)
{
    std::size_t runs = 0;
    for (const Fails fails : {Fails::Once, Fails::ForEver})
        runs += SweepMaking(making, expected, fails);
    std::printf("%zu failed allocations of a pattern handle\n", runs);
    EXPECT_GT(runs, 10U);
}

std::string Shuffled(const char* weights)
{
    return Head("3", "C", "X") + InColor("C", "X", weights);
}

TEST(PatternHandlesWithoutMemory, AreNotMade)
{
    for (const std::int32_t engine : {PLK_ENGINE_AUTOMATIC, PLK_ENGINE_X86, PLK_ENGINE_SSE}) {
        Sweep(Creation(exampleText, engine), PLK_OK);
        Sweep(Creation(Shuffled("1 1:6 0-10 0-20"), engine), PLK_OK);
    }
}

TEST(PatternHandlesWithoutMemory, AreRefusedAllTheSame)
{
    for (const std::int32_t engine : {PLK_ENGINE_X86, PLK_ENGINE_SSE}) {
        Sweep(Creation(Shuffled("1 1 0-1\n9 1 0-1"), engine), PLK_BAD_TEXT);
        Sweep(Creation(Shuffled("2 1 0-1"), engine), PLK_BAD_TEXT);
        Sweep(Creation(Head("2", Names(" C", 17), "X") + InColor("C0", "X", "1 1 0-1"), engine),
              PLK_BAD_TEXT);
    }
}

TEST(PatternHandlesWithoutMemory, AreNotLoaded)
{
    plk_pattern* const saved = MakeOnce(exampleText);
    std::uint64_t needed = 0;
    plk_pattern_save(saved, nullptr, 0, &needed, nullptr);
    std::string record(static_cast<std::size_t>(needed), '\0');
    ASSERT_EQ(plk_pattern_save(saved, record.data(), record.size(), &needed, nullptr), PLK_OK);
    Sweep(
        [&](plk_pattern** pattern, plk_failure* failure) {
            return plk_pattern_load(record.data(), record.size(), pattern, failure);
        },
        PLK_OK);

    // A saved record needs memory of its own.
    std::string untouched(record.size(), 'x');
    CountedMemory memory;
    memory.FailAt(0);
    memory.Start();
    const plk_status status =
        plk_pattern_save(saved, untouched.data(), untouched.size(), &needed, nullptr);
    memory.Stop();
    EXPECT_EQ(status, PLK_NO_MEMORY);
    EXPECT_EQ(untouched, std::string(record.size(), 'x'));
    plk_pattern_free(saved);
}

// A shuffled field of more than 1 GB is refused on every machine.
TEST(PatternHandlesWithoutMemory, HaveNoFieldBeyondALimit)
{
    const std::string text = Shuffled("1 1:268435456 0-1 0-2");
    plk_pattern* pattern = nullptr;
    EXPECT_EQ(plk_pattern_create(text.data(), text.size(), nullptr, &pattern, nullptr),
              PLK_NO_MEMORY);
    EXPECT_EQ(pattern, nullptr);
}

TEST(PatternHandlesWithoutMemory, ApplyTheirRows)
{
    plk_pattern* const pattern = MakeOnce(exampleText);
    // Two in-colours and three out-inks.
    const std::vector<unsigned char> steps(1000, 2);
    std::vector<unsigned char> inks(1500);
    const plk_source from = {sizeof from, 0, steps.data(), steps.size(), 0, 0, 0};
    const plk_target to = {sizeof to, 0, inks.data(), inks.size(), 0, 150, 0};
    plk_pattern_facts facts = {};
    facts.size = sizeof facts;
    CountedMemory memory;
    memory.FailAt(0, Fails::ForEver);
    memory.Start();
    const plk_status run = plk_pattern_run(pattern, 7, 10, 50, &from, &to, nullptr);
    const plk_status needs = plk_pattern_needs(pattern, &facts, nullptr);
    memory.Stop();
    EXPECT_EQ(run, PLK_OK);
    EXPECT_EQ(needs, PLK_OK);
    EXPECT_EQ(memory.CountAsked(), 0U);
    plk_pattern_free(pattern);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
