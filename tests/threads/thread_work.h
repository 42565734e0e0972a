#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tests/pattern/naive_pattern.h"
#include "tests/support/conversion_run.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

// Work that several threads may do at once, each part of it with the result that it must have.
// The checks in here fail the test.
namespace zvk::Pelkraft::TestSupport {

// Conversions of every kind of chain. The threads write neighbouring rows of one picture, so that
// a byte too much is one of another thread, and read the same source.
class ConversionWork
{
public:
    enum class Roads
    {
        // Each conversion on both roads.
        Both,
        // On the road that the processor level chooses, and only what both do alike.
        Any,
    };

    explicit ConversionWork(Roads roads);

    // Thread 0 to 15.
    void Run(int thread);

private:
    struct Work
    {
        ConversionCase conversion;
        Bytes source;
        Bytes before;
        Bytes expected;
        Bytes picture;
    };

    void Add(const ConversionCase& conversion);

    std::vector<Work> works;
};

// Builds, applies and resets patterns of both generations on every engine.
class PatternWork
{
public:
    // The engines, by the processor level too if wanted.
    explicit PatternWork(bool automatic);

    void Run(int thread) const;

private:
    struct Work
    {
        std::string text;
        DotWeavePattern::Engine engine;
        std::vector<Bytes> steps;
        std::vector<Bytes> inks;
    };

    void Add(const NaivePattern& pattern, DotWeavePattern::Engine engine);

    std::vector<Work> works;
};

// Plans of the C interface, each of which all threads run at once. They read one picture and write
// neighbouring rows of another.
class PlanWork
{
public:
    explicit PlanWork(int threads);
    ~PlanWork();
    PlanWork(const PlanWork&) = delete;
    PlanWork& operator=(const PlanWork&) = delete;

    void Run(int thread);

private:
    struct Work;

    std::vector<Work> works;
};

// Conversions that fail, each of which logs one line.
class FailureWork
{
public:
    FailureWork();

    void Run() const;

    // Counts the lines that so many runs log.
    std::map<std::wstring, int> LinesOf(int runs) const;

private:
    const std::vector<std::function<void()>> conversions;
    std::vector<std::string> texts;
    std::map<std::wstring, int> lines;
};

} // namespace zvk::Pelkraft::TestSupport
