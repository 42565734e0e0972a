#include "tests/tools/io_fixture.h"

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <thread>

namespace zvk::Pelkraft::TestSupport {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t seed = 20231;

// Moments of a kill for each use and signal.
int Moments()
{
    return std::getenv("PELKRAFT_TEST_FULL") != nullptr ? 50 : 2;
}

class IoKill : public IoFixture
{
protected:
    // The folder after a run that was let be.
    struct Good
    {
        FolderState before;
        FolderState after;
        Clock::duration time;
    };

    IoKill() { std::printf("io_kill: seed %u\n", seed); }
    ~IoKill() override { std::printf("io_kill: %ld kills, %ld met at work\n", kills, met); }

    [[nodiscard]] Good RunWell(const ToolUse& use, bool withOld) const
    {
        Good good;
        PrepareTargets(use, withOld);
        good.before = State();
        const auto start = Clock::now();
        EXPECT_TRUE(EndedSilently(RunUse(use)));
        good.time = Clock::now() - start;
        good.after = State();
        return good;
    }

    // Names that only a killed program leaves, which are taken away.
    int RemoveTemporaries() const
    {
        int removed = 0;
        for (const std::string& name : Files()) {
            if (name.rfind(".pelkraft-", 0) != 0)
                continue;
            std::filesystem::remove(Path(name));
            ++removed;
        }
        return removed;
    }

    void JudgeEnd(const ToolUse& use, const Outcome& outcome, int signalNumber, const Good& good)
    {
        ++kills;
        const int temporaries = RemoveTemporaries();
        const FolderState state = State();
        EXPECT_TRUE(IsOldOrNew(state, good.before, good.after));
        if (outcome.exitCode == 0) {
            EXPECT_TRUE(state == good.after);
            EXPECT_EQ(0, temporaries);
            return;
        }
        ++met;
        if (signalNumber == SIGKILL) {
            EXPECT_EQ(SIGKILL, outcome.signalNumber);
            EXPECT_LE(temporaries, static_cast<int>(use.targets.size()));
            return;
        }
        EXPECT_EQ(0, temporaries);
        EXPECT_TRUE(state == good.before);
        // Before the program has begun, a signal ends it in the system's own way.
        if (outcome.signalNumber == 0)
            EXPECT_TRUE(Refused(outcome, 130, {"interrupted; nothing was written"}));
        else
            EXPECT_EQ(signalNumber, outcome.signalNumber);
    }

    void KillBefore(const ToolUse& use, const std::string& order, int signalNumber,
                    const Good& good)
    {
        SCOPED_TRACE(use.name + ": " + order);
        PrepareTargets(use, true);
        JudgeEnd(use, RunUse(use, order), signalNumber, good);
    }

    long kills = 0;
    long met = 0;
};

TEST_F(IoKill, LeavesOldOrWholeFilesAtRandomMoments)
{
    std::mt19937 random(seed);
    for (const ToolUse& use : uses) {
        if (use.targets.empty())
            continue;
        for (const int signalNumber : {SIGKILL, SIGINT, SIGTERM}) {
            for (int moment = 0; moment < Moments(); ++moment) {
                const bool withOld = moment % 2 != 0;
                // Measured each time: how busy the machine is changes.
                const Good good = RunWell(use, withOld);
                PrepareTargets(use, withOld);
                const double share = static_cast<double>(random()) / 4294967296.0 * 1.1;
                SCOPED_TRACE(::testing::Message()
                             << use.name << ": signal " << signalNumber << " after " << share);
                const auto when =
                    Clock::now() + std::chrono::duration_cast<Clock::duration>(good.time * share);
                Subprocess tool = Start(use);
                std::this_thread::sleep_until(when);
                kill(static_cast<pid_t>(tool.Id()), signalNumber);
                JudgeEnd(use, tool.Wait(), signalNumber, good);
            }
        }
    }
    EXPECT_GT(met, kills / 10);
}

// Between two calls to the system no moment differs from another to who looks at the files.
TEST_F(IoKill, LeavesOldOrWholeFilesBeforeEveryCall)
{
    const bool whole = std::getenv("PELKRAFT_TEST_FULL") != nullptr;
    int turn = 0;
    for (const ToolUse& use : uses) {
        if (use.targets.empty())
            continue;
        const Good good = RunWell(use, true);
        for (const auto& [call, count] : Calls()) {
            for (const long number : CallNumbers(count)) {
                const std::string place = call + ' ' + std::to_string(number) + ' ';
                // The sample takes one signal after the other.
                if (whole || turn % 3 == 0)
                    KillBefore(use, place + "SIGKILL", SIGKILL, good);
                if (whole || turn % 3 == 1)
                    KillBefore(use, place + "SIGINT", SIGINT, good);
                if (whole || turn % 3 == 2)
                    KillBefore(use, place + "SIGTERM", SIGTERM, good);
                ++turn;
            }
        }
    }
    EXPECT_GT(met, kills / 2);
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
