#include <algorithm>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "pelkraft/copy_primitives.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/pattern/naive_reference.h"
#include "tests/support/any_conversion.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/random_bytes.h"
#include "zvk/diagnostics.h"

#include <malloc.h>
#include <unistd.h>

// soak SECONDS THREADS: random conversions, patterns and copies on all threads, each result held
// against a naive one, while the memory of the process is watched. Ends with 1 if a result
// differs or, after ten minutes and more, if the memory is not within one hundredth of what it was
// early on.
namespace zvk::Pelkraft::TestSupport {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int secondsPerRound = 1;
// Below that no tenth of the rounds is worth a median.
constexpr int secondsThatTellGrowth = 600;

class SilentSink final : public Diagnostics::ILogSink
{
public:
    void Write(const wchar_t*) override {}
};

// Counts what all threads have done, and keeps the first things that they found wrong.
class Tally
{
public:
    void Note(const std::string& finding)
    {
        if (finding.empty())
            return;
        const std::lock_guard<std::mutex> lock(mutex);
        if (++mismatches <= 10)
            std::fprintf(stderr, "%s\n", finding.c_str());
    }

    std::atomic<std::uint64_t> conversions{0};
    std::atomic<std::uint64_t> rows{0};
    std::atomic<std::uint64_t> copies{0};
    std::atomic<std::uint64_t> mismatches{0};

private:
    std::mutex mutex;
};

// A pattern and the naive one beside it, row after row.
class PatternPair
{
public:
    PatternPair(const NaivePattern& description, Engine newEngine)
        : engine(newEngine), inColors(description.inColors.size()), text(description.Text()),
          pattern(Load(text, engine)), simulation(description), reference(description)
    {}

    std::string CheckRow(std::mt19937& random)
    {
        if (random() % 64 == 0)
            Reset();
        const Bytes source =
            RandomSteps(random() % 60 * inColors, static_cast<std::uint32_t>(random()));
        const Bytes expected =
            engine == DotWeavePattern::Reference ? reference.Apply(source) : simulation.Row(source);
        return Apply(pattern, source) == expected ? std::string() : "a row differs of\n" + text;
    }

private:
    void Reset()
    {
        pattern.ResetRandomizer();
        simulation.Reset(engine == DotWeavePattern::X86);
        reference.Reset();
    }

    Engine engine;
    std::size_t inColors;
    std::string text;
    DotWeavePattern pattern;
    NaiveSimulation simulation;
    NaiveReference reference;
};

bool IsLoadable(const NaivePattern& description, Engine engine)
{
    const std::uint64_t combinations = NaiveSimulation::CountCombinations(description);
    if (combinations < 2 || combinations > 256)
        return false;
    if (engine == DotWeavePattern::Reference)
        return description.version == 2 && description.outInks <= 12;
    // On the vector engine a second field of another size, on whatever thread, would matter.
    return engine == DotWeavePattern::X86 ||
           (description.version == 2 && Refusal(description.Text(), engine) == "nothing");
}

PatternPair MakePair(std::mt19937& random)
{
    constexpr Engine engines[] = {DotWeavePattern::Reference, DotWeavePattern::X86,
                                  DotWeavePattern::Sse};
    for (;;) {
        const NaivePattern description = RandomPattern(random, random() % 8 == 0 ? 3 : 2);
        const Engine engine = engines[random() % 3];
        if (IsLoadable(description, engine))
            return PatternPair(description, engine);
    }
}

std::string CheckCopy(std::mt19937& random)
{
    const std::size_t size = random() % 3000;
    const Bytes source = RandomBytes(size, static_cast<std::uint32_t>(random()));
    const GuardedBuffer from(source);
    const GuardedBuffer to(size, random() % 2 == 0 ? Flush::AtEnd : Flush::AtStart, 0);
    const auto copy = random() % 2 == 0 ? intelMemcopy : copyByDwords;
    copy(from.data(), to.data(), static_cast<int>(size));
    return to.bytes() == source ? std::string() : "a copy differs";
}

// One pair of its own and many others, until the round is over.
void WorkThroughRound(std::mt19937& random, PatternPair& lasting, Clock::time_point end,
                      Tally& tally)
{
    while (Clock::now() < end) {
        for (int i = 0; i < 200; ++i) {
            const Bytes choices = RandomBytes(96, static_cast<std::uint32_t>(random()));
            tally.Note(CheckAnyConversion(choices.data(), choices.size()));
            tally.Note(CheckCopy(random));
            tally.Note(lasting.CheckRow(random));
        }
        PatternPair pair = MakePair(random);
        constexpr int rowsOfPair = 20;
        for (int row = 0; row < rowsOfPair; ++row)
            tally.Note(pair.CheckRow(random));
        tally.conversions += 400;
        tally.copies += 200;
        tally.rows += 200 + rowsOfPair;
    }
}

long ResidentPages()
{
    malloc_trim(0);
    std::ifstream numbers("/proc/self/statm");
    long size = 0;
    long resident = 0;
    numbers >> size >> resident;
    return resident;
}

double Median(std::vector<long> values)
{
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2),
                     values.end());
    return static_cast<double>(values[values.size() / 2]);
}

// Growth from the second tenth of the samples, when all is warm, to the last one.
double Growth(const std::vector<long>& samples)
{
    const auto tenth = static_cast<long>(samples.size() / 10);
    const double early = Median({samples.begin() + tenth, samples.begin() + 2 * tenth});
    const double late = Median({samples.end() - tenth, samples.end()});
    return late / early - 1;
}

int Soak(int seconds, int threads)
{
    SilentSink sink;
    Diagnostics::Seh::SetDefaultLog(&sink);
    // Larger blocks come and go as pages of their own, so that gaps between them don't blur.
    mallopt(M_MMAP_THRESHOLD, 16 << 10);
    Tally tally;
    // One for each round. Their room is taken at once: it must not grow either.
    std::vector<long> samples;
    const int rounds = seconds / secondsPerRound;
    samples.reserve(static_cast<std::size_t>(rounds));
    // Between two rounds no thread holds more than its lasting pair.
    std::barrier pause(threads, [&samples]() noexcept { samples.push_back(ResidentPages()); });
    const Clock::time_point start = Clock::now();
    std::vector<std::thread> workers;
    workers.reserve(static_cast<std::size_t>(threads));
    for (int i = 0; i < threads; ++i)
        workers.emplace_back([&, i] {
            std::mt19937 random(1000U + static_cast<std::uint32_t>(i));
            // It lives as long as the thread does, so that its rows run far.
            PatternPair lasting = MakePair(random);
            for (int round = 1; round <= rounds; ++round) {
                const auto end = start + std::chrono::seconds(round * secondsPerRound);
                WorkThroughRound(random, lasting, end, tally);
                pause.arrive_and_wait();
            }
        });
    for (std::thread& worker : workers)
        worker.join();

    const double growth = Growth(samples) * 100;
    const long pageBytes = sysconf(_SC_PAGESIZE);
    std::printf("figure: %d s, %d threads, %llu conversions, %llu pattern rows, %llu copies, "
                "%llu mismatches, memory %+.2f %% at %.1f MiB\n",
                seconds, threads, static_cast<unsigned long long>(tally.conversions),
                static_cast<unsigned long long>(tally.rows),
                static_cast<unsigned long long>(tally.copies),
                static_cast<unsigned long long>(tally.mismatches), growth,
                static_cast<double>(samples.back() * pageBytes) / (1 << 20));
    const bool hasGrown = seconds >= secondsThatTellGrowth && std::abs(growth) > 1;
    return tally.mismatches != 0 || hasGrown ? 1 : 0;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

int main(int argc, char** argv)
{
    const int seconds = argc == 3 ? std::atoi(argv[1]) : 0;
    const int threads = argc == 3 ? std::atoi(argv[2]) : 0;
    if (seconds < 10 || threads < 1) {
        std::fputs("usage: soak SECONDS THREADS, of at least 10 seconds\n", stderr);
        return 2;
    }
    return zvk::Pelkraft::TestSupport::Soak(seconds, threads);
}
