#include "tests/system_tools/recording_sink.h"
#include "tests/system_tools/standard_error_capture.h"
#include "zvk/diagnostics.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace zvk::Diagnostics {
namespace {

using Pelkraft::TestSupport::StandardErrorCapture;

constexpr int threadCount = 8;
constexpr int linesPerThread = 500;

std::string TextOf(int thread)
{
    return std::string(static_cast<std::size_t>(50 + 20 * thread), static_cast<char>('a' + thread));
}

// Every thread logs its own text over and over, to whatever sink is the default just then.
void LogFromManyThreads()
{
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([text = TextOf(thread)] {
            for (int i = 0; i < linesPerThread; ++i)
                StandardExceptionLogger::Log(text.c_str(), L"thread: ", Seh::GetDefaultLog());
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

std::map<std::string, int> ExpectedCounts()
{
    std::map<std::string, int> counts;
    for (int thread = 0; thread < threadCount; ++thread)
        counts["thread: " + TextOf(thread)] = linesPerThread;
    return counts;
}

void CountLines(const RecordingSink& sink, std::map<std::string, int>& counts)
{
    for (const std::wstring& line : sink.Lines()) {
        std::string narrow;
        for (const wchar_t character : line)
            narrow += static_cast<char>(character);
        ++counts[narrow];
    }
}

void CountLines(const std::string& text, std::map<std::string, int>& counts)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        ++counts[line];
}

TEST(LogOfManyThreads, KeepsLinesOfTheBuiltInSinkWhole)
{
    const StandardErrorCapture capture;
    LogFromManyThreads();
    std::map<std::string, int> counts;
    CountLines(capture.Text(), counts);
    EXPECT_EQ(ExpectedCounts(), counts);
}

TEST(LogOfManyThreads, LosesNoLineWhileTheSinkIsSwapped)
{
    const StandardErrorCapture capture;
    RecordingSink first;
    RecordingSink second;
    std::atomic<bool> done{false};
    std::thread swapper([&] {
        ILogSink* const sinks[] = {&first, nullptr, &second};
        for (std::size_t i = 0; !done; ++i) {
            Seh::SetDefaultLog(sinks[i % 3]);
            std::this_thread::yield();
        }
        Seh::SetDefaultLog(nullptr);
    });
    LogFromManyThreads();
    done = true;
    swapper.join();

    std::map<std::string, int> counts;
    CountLines(first, counts);
    CountLines(second, counts);
    CountLines(capture.Text(), counts);
    EXPECT_EQ(ExpectedCounts(), counts);
}

} // namespace
} // namespace zvk::Diagnostics
