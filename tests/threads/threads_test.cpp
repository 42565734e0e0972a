#include "tests/system_tools/recording_sink.h"
#include "tests/system_tools/standard_error_capture.h"
#include "tests/threads/at_once.h"
#include "tests/threads/thread_work.h"
#include "zvk/system_tools.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <sstream>

// Sixteen threads at once, in every way that the public headers allow; ThreadSanitizer looks for
// more than results. PELKRAFT_THREAD_ROUNDS says how often each thread does its work.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Diagnostics::RecordingSink;

int Rounds()
{
    const char* rounds = std::getenv("PELKRAFT_THREAD_ROUNDS");
    return rounds != nullptr ? static_cast<int>(std::strtol(rounds, nullptr, 10)) : 1;
}

void AtOnceInRounds(const std::function<void(int thread)>& work)
{
    AtOnce([&](int thread) {
        for (int round = 0; round < Rounds(); ++round)
            work(thread);
    });
}

// Sets the process's log anew, over and over, while it lives; counts what all of them were given.
class SwappedLog
{
public:
    SwappedLog()
        : swapper([this](const std::stop_token& stop) {
              Diagnostics::ILogSink* const all[] = {&sinks[0], nullptr, &sinks[1]};
              for (std::size_t i = 0; !stop.stop_requested(); ++i) {
                  Diagnostics::Seh::SetDefaultLog(all[i % 3]);
                  std::this_thread::yield();
              }
              Diagnostics::Seh::SetDefaultLog(nullptr);
          })
    {}

    // Ends the swapping.
    std::map<std::wstring, int> Lines()
    {
        swapper.request_stop();
        swapper.join();
        std::map<std::wstring, int> lines;
        for (const RecordingSink& sink : sinks)
            for (const std::wstring& line : sink.Lines())
                ++lines[line];
        std::istringstream text(capture.Text());
        for (std::string line; std::getline(text, line);)
            ++lines[std::wstring(line.begin(), line.end())];
        return lines;
    }

private:
    const StandardErrorCapture capture;
    RecordingSink sinks[2];
    std::jthread swapper;
};

// Switches the vector road off and on, over and over, while it lives.
class SwitchedLevel
{
public:
    SwitchedLevel()
        : switcher([](const std::stop_token& stop) {
              for (int level = 0; !stop.stop_requested(); level = 7 - level) {
                  SystemTools::LimitSseVersion(level);
                  std::this_thread::yield();
              }
              SystemTools::LimitSseVersion(7);
          })
    {}

private:
    std::jthread switcher;
};

TEST(SixteenThreads, ConvertNeighbouringRows)
{
    ConversionWork conversions(ConversionWork::Roads::Both);
    AtOnceInRounds([&](int thread) { conversions.Run(thread); });
}

// A row that many threads read at once, and what it must become.
struct SharedSource
{
    SharedSource()
    {
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i);
        row.SetAll(width, 4, 8, false, bytes.data());
        expected = NaiveConvert({width, 4, 8, false}, bytes, {width, 4, 16, true},
                                Bytes(8 * std::size_t{width}), {});
    }

    // A road of its own, or the one that the level chooses.
    void Convert(bool forcePortable) const
    {
        ImageRow planes(width, 4, 16, true, nullptr);
        planes.FillFrom(row, false, forcePortable);
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), planes.GetData()));
    }

    static constexpr int width = 33;
    Bytes bytes = Bytes(4 * std::size_t{width});
    ImageRow row;
    Bytes expected;
};

TEST(SixteenThreads, ReadOneRow)
{
    const SharedSource source;
    AtOnceInRounds([&](int thread) {
        for (int i = 0; i < 50; ++i)
            source.Convert((thread + i) % 2 == 0);
    });
}

// Little else is done, or ThreadSanitizer would have forgotten the level's last change.
TEST(SixteenThreads, ConvertWhileTheLevelIsSwitched)
{
    const SharedSource source;
    const SwitchedLevel level;
    AtOnceInRounds([&](int) {
        for (int i = 0; i < 50; ++i)
            source.Convert(false);
    });
}

TEST(SixteenThreads, BuildAndApplyPatterns)
{
    const PatternWork patterns(true);
    AtOnceInRounds([&](int thread) { patterns.Run(thread); });
}

TEST(SixteenThreads, RunOnePlan)
{
    PlanWork plans(threadCount);
    AtOnceInRounds([&](int thread) { plans.Run(thread); });
}

TEST(SixteenThreads, LogEveryFailureWhileTheLogIsSwapped)
{
    constexpr int runs = 20;
    const FailureWork failures;
    SwappedLog log;
    AtOnceInRounds([&](int) {
        for (int run = 0; run < runs; ++run)
            failures.Run();
    });
    EXPECT_EQ(log.Lines(), failures.LinesOf(threadCount * Rounds() * runs));
}

TEST(SixteenThreads, DoEverythingWhileLogAndLevelChange)
{
    ConversionWork conversions(ConversionWork::Roads::Any);
    const PatternWork patterns(true);
    const FailureWork failures;
    SwappedLog log;
    {
        const SwitchedLevel level;
        AtOnceInRounds([&](int thread) {
            if (thread % 2 == 0)
                conversions.Run(thread);
            else if (thread % 4 == 1)
                patterns.Run(thread);
            failures.Run();
        });
    }
    EXPECT_EQ(log.Lines(), failures.LinesOf(threadCount * Rounds()));
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
