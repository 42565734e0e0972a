#include "pelkraft/dot_weave_pattern.h"
#include "pelkraft/image_row.h"
#include "tests/pattern/naive_reference.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/support/random_bytes.h"
#include "tests/support/structured_lines.h"
#include "tests/system_tools/recording_sink.h"
#include "tests/system_tools/standard_error_capture.h"
#include "tests/threads/at_once.h"
#include "zvk/system_tools.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sstream>

// Sixteen threads at once are the first to use what a process builds at its first use: an argument
// says which thread begins with what. The program exits with 0 if everything is right.
namespace zvk::Pelkraft::TestSupport {
namespace {

struct Seen
{
    std::atomic<int> wrong{0};
    std::atomic<int> failures{0};
    std::atomic<int> levels[8] = {};
};

// The works of a thread, and the results that they must have.
class FirstUses
{
public:
    FirstUses()
        : row(RandomBytes(NaiveRowBytes(from), 1)),
          planes(NaiveConvert(from, row, to, Bytes(NaiveRowBytes(to)), {}))
    {
        for (const int generation : {0, 1})
            AddPattern(MakeGoldenPattern(generation, 0), generation == 0);
    }

    int Count() const { return static_cast<int>(uses.size()) + 4; }

    // Answers whether the result is right.
    void Do(int number, Seen& seen)
    {
        bool right = true;
        if (number == 0)
            ++seen.levels[SystemTools::GetSseVersion()];
        else if (number == 1)
            right = Convert();
        else if (number == 2)
            seen.failures += Fail() ? 1 : 0;
        else if (number == 3)
            Diagnostics::Seh::SetDefaultLog(&sink);
        else
            right = ApplyPattern(uses[static_cast<std::size_t>(number - 4)]);
        seen.wrong += right ? 0 : 1;
    }

    // The clauses' lines in the sink and, as long as it wasn't set, in the stream.
    long LoggedLines() const
    {
        std::vector<std::wstring> lines = sink.Lines();
        std::istringstream text(capture.Text());
        for (std::string line; std::getline(text, line);)
            lines.emplace_back(line.begin(), line.end());
        return static_cast<long>(
            std::count_if(lines.begin(), lines.end(),
                          [](const std::wstring& line) { return !IsStructuredLine(line); }));
    }

private:
    struct PatternUse
    {
        std::string text;
        DotWeavePattern::Engine engine;
        Bytes steps;
        Bytes inks;
    };

    void AddPattern(const NaivePattern& pattern, bool onReferenceToo)
    {
        const Bytes steps = MakeGoldenPicture(pattern, {61, 1}, 0).front();
        const Bytes inks = NaiveSimulation(pattern).Row(steps);
        for (const auto engine :
             {DotWeavePattern::Automatic, DotWeavePattern::X86, DotWeavePattern::Sse})
            uses.push_back({pattern.Text(), engine, steps, inks});
        if (onReferenceToo)
            uses.push_back({pattern.Text(), DotWeavePattern::Reference, steps,
                            NaiveReference(pattern).Apply(steps)});
    }

    bool Convert() const
    {
        Bytes bytes = row;
        const ImageRow source(37, 3, 8, false, bytes.data());
        Bytes result(planes.size());
        ImageRow(37, 3, 16, true, result.data()).FillFrom(source, nullptr);
        return result == planes;
    }

    static bool Fail()
    {
        try {
            ImageRow().FillFromWithPixelRepeat(ImageRow(), 3, nullptr);
        } catch (const char*) {
            return true;
        }
        return false;
    }

    static bool ApplyPattern(const PatternUse& use)
    {
        std::string text = use.text;
        DotWeavePattern pattern(text.data(), use.engine);
        Bytes steps = use.steps;
        Bytes inks(use.inks.size());
        pattern.ApplyPattern(steps.data(), inks.data(), 61);
        return inks == use.inks;
    }

    const NaiveGeometry from{37, 3, 8, false};
    const NaiveGeometry to{37, 3, 16, true};
    const StandardErrorCapture capture;
    Diagnostics::RecordingSink sink;
    const Bytes row;
    const Bytes planes;
    std::vector<PatternUse> uses;
};

// The first use of a thread: all the same one, or each another one.
int FirstUse(int number, int thread, int count)
{
    const int choice = number % (count + 1);
    return choice < count ? choice : (thread + number / (count + 1)) % count;
}

bool AllIsRight(int number)
{
    Seen seen;
    FirstUses uses;
    AtOnce([&](int thread) {
        const int first = FirstUse(number, thread, uses.Count());
        for (int i = 0; i < uses.Count(); ++i)
            uses.Do((first + i) % uses.Count(), seen);
    });
    Diagnostics::Seh::SetDefaultLog(nullptr);
    std::printf("wrong results: %d, failures: %d, logged: %ld\n", seen.wrong.load(),
                seen.failures.load(), uses.LoggedLines());
    return seen.wrong == 0 && seen.failures == threadCount && uses.LoggedLines() == threadCount &&
           seen.levels[SystemTools::GetSseVersion()] == threadCount;
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

int main(int argumentCount, char** arguments)
{
    const int number = argumentCount > 1 ? std::atoi(arguments[1]) : 0;
    return zvk::Pelkraft::TestSupport::AllIsRight(number) ? 0 : 1;
}
