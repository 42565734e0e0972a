#include "tests/pattern/naive_reference.h"
#include "tests/reproducibility/golden_cases.h"
#include "tests/threads/at_once.h"
#include "tests/threads/thread_work.h"

#include <gtest/gtest.h>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr PictureSize size{61, 3};

// The picture twice, with a reset between the two.
std::vector<Bytes> ApplyNaively(const NaivePattern& pattern, DotWeavePattern::Engine engine,
                                const std::vector<Bytes>& steps)
{
    std::vector<Bytes> inks;
    NaiveSimulation simulation(pattern);
    NaiveReference reference(pattern);
    for (int pass = 0; pass < 2; ++pass) {
        for (const Bytes& row : steps)
            inks.push_back(engine == DotWeavePattern::Reference ? reference.Apply(row)
                                                                : simulation.Row(row));
        simulation.Reset(engine == DotWeavePattern::X86);
        reference.Reset();
    }
    return inks;
}

} // namespace

PatternWork::PatternWork(bool automatic)
{
    for (int number = 0; number < 8; ++number) {
        NaivePattern pattern = MakeGoldenPattern(number, 0);
        Add(pattern, DotWeavePattern::X86);
        Add(pattern, DotWeavePattern::Sse);
        if (automatic)
            Add(pattern, DotWeavePattern::Automatic);
        pattern.version = 2;
        Add(pattern, DotWeavePattern::Reference);
    }
}

void PatternWork::Add(const NaivePattern& pattern, DotWeavePattern::Engine engine)
{
    Work work{pattern.Text(), engine, MakeGoldenPicture(pattern, size, 0), {}};
    work.inks = ApplyNaively(pattern, engine, work.steps);
    // The first row after a reset shows which engine it is.
    if (engine == DotWeavePattern::Automatic)
        work.inks.resize(work.steps.size());
    works.push_back(std::move(work));
}

void PatternWork::Run(int thread) const
{
    for (std::size_t i = 0; i < works.size(); ++i) {
        const Work& work = works[(i + static_cast<std::size_t>(thread)) % works.size()];
        std::string text = work.text;
        DotWeavePattern pattern(text.data(), work.engine);
        for (std::size_t row = 0; row < work.inks.size(); ++row) {
            if (row == work.steps.size())
                pattern.ResetRandomizer();
            Bytes steps = work.steps[row % work.steps.size()];
            Bytes inks(work.inks[row].size());
            pattern.ApplyPattern(steps.data(), inks.data(), size.width);
            EXPECT_TRUE(inks == work.inks[row]) << "row " << row << " of\n" << work.text;
        }
    }
}

} // namespace zvk::Pelkraft::TestSupport
