#include "pelkraft/dot_weave_pattern.h"
#include "tests/memory_failure/memory_sweep.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/pattern_support.h"
#include "zvk/system_tools.h"

#include <optional>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr std::size_t rowPixels = 300;
// More than the smaller field of two has places.
constexpr std::size_t longRowPixels = 120000;

// Lets a pattern take another text, as a derived class can.
class ReloadedPattern final : public DotWeavePattern
{
public:
    using DotWeavePattern::DotWeavePattern;
    void Reload(char* text, Engine engine) { Init(text, engine); }
};

// One in-colour and one out-ink, which has two alternatives with these weights.
std::string Weighted(const char* version, int first, int second)
{
    const std::string weights = Numbered("1 ", first) + Numbered(":", second);
    return Head(version, "C", "X") + InColor("C", "X", weights + " 0-10 0-20");
}

struct PatternCase
{
    std::string name;
    const char* version;
    std::string text;
    Engine engine;
};

std::vector<PatternCase> PatternCases()
{
    const std::pair<Engine, const char*> engines[] = {{DotWeavePattern::Automatic, "auto"},
                                                      {DotWeavePattern::Reference, "reference"},
                                                      {DotWeavePattern::X86, "x86"},
                                                      {DotWeavePattern::Sse, "sse"}};
    std::vector<PatternCase> cases;
    for (const auto& [engine, name] : engines) {
        const std::string on = std::string(" on ") + name;
        cases.push_back({"a small pattern" + on, "2", exampleText, engine});
        cases.push_back({"an even pattern" + on, "2", Weighted("2", 1, 1), engine});
        cases.push_back({"a shuffled pattern" + on, "3", Weighted("3", 1, 6), engine});
    }
    return cases;
}

// Returns the next two rows, from the first one on, and what the pattern says of itself.
Bytes AnswersOf(DotWeavePattern& pattern, std::size_t pixels = rowPixels)
{
    const auto bytes = pixels * static_cast<std::size_t>(pattern.GetInColorCount());
    const Bytes steps = RandomSteps(bytes, 4);
    pattern.ResetRandomizer();
    Bytes answers = Apply(pattern, steps);
    const Bytes second = Apply(pattern, steps);
    answers.insert(answers.end(), second.begin(), second.end());
    answers.push_back(static_cast<unsigned char>(pattern.GetInColorCount()));
    answers.push_back(static_cast<unsigned char>(pattern.GetOutColorCount()));
    answers.push_back(static_cast<unsigned char>(pattern.GetNumberOfStepsForInColor(0)));
    return answers;
}

// A pattern that there is already, and what an operation makes. The twin answers what the new one
// has to.
class PatternTrial : public Trial
{
public:
    explicit PatternTrial(const PatternCase& tested)
        : text(tested.text), engine(tested.engine), otherText(Weighted(tested.version, 2, 3)),
          present(otherText.data(), DotWeavePattern::X86), twin(text.data(), engine)
    {}

    Bytes GetState() override
    {
        Bytes state = AnswersOf(present);
        if (made)
            state.push_back(1);
        return state;
    }

    bool IsDone() override { return made && AnswersOf(*made) == AnswersOf(twin); }

protected:
    std::string text;
    Engine engine;
    std::string otherText;
    ReloadedPattern present;
    DotWeavePattern twin;
    std::optional<DotWeavePattern> made;
};

class Construct final : public PatternTrial
{
public:
    using PatternTrial::PatternTrial;
    void Run() override { made.emplace(text.data(), engine); }
};

class ConstructAutomatically final : public PatternTrial
{
public:
    using PatternTrial::PatternTrial;
    void Run() override { made.emplace(text.data()); }
};

class Copy final : public PatternTrial
{
public:
    using PatternTrial::PatternTrial;
    void Run() override { made.emplace(twin); }
};

class Assign final : public PatternTrial
{
public:
    using PatternTrial::PatternTrial;
    void Run() override
    {
        made.emplace(present);
        *made = twin;
        *made = *&*made;
    }
};

class Reload final : public PatternTrial
{
public:
    using PatternTrial::PatternTrial;
    void Run() override { present.Reload(text.data(), engine); }
    bool IsDone() override { return AnswersOf(present) == AnswersOf(twin); }
};

class End final : public PatternTrial
{
public:
    using PatternTrial::PatternTrial;
    void Run() override
    {
        made.emplace(twin);
        made.reset();
    }
    bool IsDone() override { return !made; }
};

// The rows of a pattern from the first one on; all of it is in memory already.
class ApplyRows final : public PatternTrial
{
public:
    explicit ApplyRows(const PatternCase& tested)
        : PatternTrial(tested), pattern(text.data(), engine),
          source(RandomSteps(rowPixels * static_cast<std::size_t>(twin.GetInColorCount()), 4)),
          rows(3 * rowPixels * static_cast<std::size_t>(twin.GetOutColorCount()))
    {}

    void Run() override
    {
        pattern.ResetRandomizer();
        for (std::size_t row = 0; row != 3; ++row)
            pattern.ApplyPattern(source.data(), rows.data() + row * rows.size() / 3, rowPixels);
        pattern.ApplyPattern(nullptr, nullptr, 0);
    }

    bool IsDone() override
    {
        Bytes expected;
        twin.ResetRandomizer();
        for (std::size_t row = 0; row != 3; ++row) {
            const Bytes next = Apply(twin, source);
            expected.insert(expected.end(), next.begin(), next.end());
        }
        return rows == expected;
    }

private:
    DotWeavePattern pattern;
    Bytes source;
    Bytes rows;
};

template <typename Made>
void AddFor(std::vector<Operation>& operations, const char* name,
            const std::vector<PatternCase>& cases)
{
    for (const PatternCase& tested : cases) {
        Operation operation;
        operation.name = name + tested.name;
        operation.prepare = [=] { return std::make_unique<Made>(tested); };
        operations.push_back(operation);
    }
}

std::vector<PatternCase> AutomaticCases()
{
    std::vector<PatternCase> automatic;
    for (const PatternCase& tested : PatternCases())
        if (tested.engine == DotWeavePattern::Automatic)
            automatic.push_back(tested);
    return automatic;
}

TEST(PatternsWithoutMemory, AreLoadedAsDocumented)
{
    std::vector<Operation> operations;
    AddFor<Construct>(operations, "the constructor of ", PatternCases());
    AddFor<ConstructAutomatically>(operations, "the short constructor of ", AutomaticCases());
    AddFor<Reload>(operations, "Init of ", PatternCases());
    SweepAll("loads of patterns", operations);
}

TEST(PatternsWithoutMemory, AreLoadedAsDocumentedOnAPlainProcessor)
{
    SystemTools::LimitSseVersion(0);
    std::vector<Operation> operations;
    AddFor<ConstructAutomatically>(operations, "the short constructor of ", AutomaticCases());
    SweepAll("loads of patterns on a plain processor", operations);
    SystemTools::LimitSseVersion(7);
}

TEST(PatternsWithoutMemory, AreSharedAndApplied)
{
    std::vector<Operation> operations;
    AddFor<Copy>(operations, "the copy of ", PatternCases());
    AddFor<Assign>(operations, "the assignment of ", PatternCases());
    AddFor<End>(operations, "the destructor of ", PatternCases());
    AddFor<ApplyRows>(operations, "ApplyPattern of ", PatternCases());
    SweepAll("uses of patterns", operations);
}

// A pattern that is refused reports its words or the lack of memory.
class Refused final : public Trial
{
public:
    Refused(const std::string& newText, Engine newEngine) : text(newText), engine(newEngine) {}

    void Run() override { made.emplace(text.data(), engine); }
    Bytes GetState() override { return Bytes(made ? 1 : 0); }
    bool IsDone() override { return false; }

private:
    std::string text;
    Engine engine;
    std::optional<DotWeavePattern> made;
};

TEST(PatternsWithoutMemory, AreRefusedAllTheSame)
{
    std::vector<Operation> refusals;
    const auto add = [&](const std::string& text, Engine engine, const char* words) {
        Operation refusal;
        refusal.name = std::string("the pattern refused by: ") + words;
        refusal.prepare = [=] { return std::make_unique<Refused>(text, engine); };
        refusal.otherText = words;
        refusal.refuses = true;
        refusals.push_back(refusal);
    };
    for (const Engine engine :
         {DotWeavePattern::Reference, DotWeavePattern::X86, DotWeavePattern::Sse}) {
        add("", engine, "Internal Message: no version in dotweave pattern");
        add("DotWeavePattern VERSION 2", engine,
            "DotWeavePattern::Init invalid DotWeave pattern configuration file!");
        add(Head("2", "C", "X") + InColor("C", "X", "9 1 0-10"), engine,
            "step out of range in pattern");
        add(Weighted("3", 0, 0), engine, "sum of weights out of range in pattern");
    }
    add(exampleText, static_cast<Engine>(9), "DotWeavePattern::Init unsupported engine");
    SweepAll("refused patterns", refusals);
}

// A shuffled pattern on the vector engine wraps at the field that was built last. One that could
// not be built is none.
class BuildBesideALongerField final : public Trial
{
public:
    BuildBesideALongerField()
        : longer(Weighted("3", 1, 100002)), shorter(Weighted("3", 1, 1)),
          present(longer.data(), DotWeavePattern::Sse)
    {}

    void Run() override { made.emplace(shorter.data(), DotWeavePattern::Sse); }
    Bytes GetState() override { return AnswersOf(present, longRowPixels); }
    bool IsDone() override { return made.has_value(); }

private:
    std::string longer;
    std::string shorter;
    DotWeavePattern present;
    std::optional<DotWeavePattern> made;
};

TEST(PatternsWithoutMemory, LeaveThoseThatAreThereAsTheyAre)
{
    Operation operation;
    operation.name = "the constructor beside a longer field";
    operation.prepare = [] { return std::make_unique<BuildBesideALongerField>(); };
    SweepAll("loads beside another pattern", {operation});
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
