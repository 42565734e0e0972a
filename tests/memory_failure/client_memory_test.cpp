#include "tests/memory_failure/client_runs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zvk::Pelkraft::TestSupport {
namespace {

// So many allocations fail in turn where not all are taken, and under the checker.
constexpr std::uint64_t sampled = 8;
constexpr std::uint64_t sampledWatched = 1;
constexpr std::uint64_t allWatched = 6;
// The checker watches one command line of so many where not all are taken.
constexpr std::size_t watchedOf = 8;

bool TakesAll()
{
    return std::getenv("PELKRAFT_TEST_FULL") != nullptr;
}

// So many numbers from 1 to count, evenly spread.
std::vector<std::uint64_t> Spread(std::uint64_t wanted, std::uint64_t count)
{
    wanted = std::min(wanted, count);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t i = 0; i < wanted; ++i)
        numbers.push_back(1 + (2 * i + 1) * count / (2 * wanted));
    return numbers;
}

class ClientMemory : public ::testing::TestWithParam<ClientCase>
{
protected:
    ClientMemory() : runs(GetParam()) {}

    // Once, and from then on for ever.
    void Try(FailingAllocation failing)
    {
        for (const bool forEver : {false, true}) {
            failing.forEver = forEver;
            EXPECT_TRUE(runs.EndsWell(failing));
            ++tried;
        }
    }

    void Tell(const char* kind) const
    {
        std::printf("%s: %s: %d runs, %d with a failure, %d of them done all the same\n", kind,
                    GetParam().name, tried, runs.CountFailed(), runs.CountSurvived());
        std::fflush(stdout);
    }

    ClientRuns runs;
    int tried = 0;
};

TEST_P(ClientMemory, EndsByTheCodeForItWhateverAllocationFails)
{
    ASSERT_TRUE(runs.Undisturbed());
    // Threads may change the count from run to run.
    const std::uint64_t count = runs.CountFromMain() + (TakesAll() ? 3 : 0);
    for (const std::uint64_t number : Spread(TakesAll() ? count : sampled, count))
        Try({.number = number});
    const std::uint64_t ahead = runs.CountAheadOfMain();
    for (const std::uint64_t number : Spread(TakesAll() ? ahead : sampled, ahead))
        Try({.number = number, .fromStart = true});
    Tell("client");
}

INSTANTIATE_TEST_SUITE_P(EachVerb, ClientMemory, ::testing::ValuesIn(ClientCases()),
                         [](const auto& tested) { return std::string(tested.param.name); });

class ClientLeaks : public ClientMemory
{};

TEST_P(ClientLeaks, AreNoneWhateverAllocationFails)
{
    ASSERT_TRUE(runs.Undisturbed(true));
    const std::uint64_t wanted = TakesAll() ? allWatched : sampledWatched;
    const std::vector<std::uint64_t> numbers = Spread(4 * wanted, runs.CountFromMain());
    // Reading the command line takes most of them; the last quarter comes after that.
    for (std::size_t i = 3 * wanted; i < numbers.size(); ++i)
        Try({.number = numbers[i], .watched = true});
    Tell("watched");
}

std::vector<ClientCase> WatchedCases()
{
    std::vector<ClientCase> cases;
    for (std::size_t i = 0; i < ClientCases().size(); i += TakesAll() ? 1 : watchedOf)
        cases.push_back(ClientCases()[i]);
    return cases;
}

INSTANTIATE_TEST_SUITE_P(EachVerb, ClientLeaks, ::testing::ValuesIn(WatchedCases()),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace
} // namespace zvk::Pelkraft::TestSupport
