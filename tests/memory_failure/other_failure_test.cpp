#include "pelkraft/copy_primitives.h"
#include "tests/memory_failure/scene_trial.h"
#include "zvk/diagnostics.h"
#include "zvk/split.h"
#include "zvk/system_tools.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <new>

namespace zvk::Pelkraft::TestSupport {
namespace {

constexpr const wchar_t* context = L"Operation has thrown: ";

class LineSink final : public Diagnostics::ILogSink
{
public:
    void Write(const wchar_t* line) override
    {
        ++lines;
        isRight = std::wcsncmp(line, context, std::wcslen(context)) == 0 &&
                  std::wcslen(line) > std::wcslen(context);
    }

    int lines = 0;
    bool isRight = false;
};

struct LogScene
{
    LogScene() : longText(5000, 'x'), longWideText(5000, L'x') {}
    Bytes GetState() { return {}; }

    LineSink sink;
    std::string longText;
    std::wstring longWideText;
    std::bad_alloc failure;
};

using Logger = Diagnostics::StandardExceptionLogger;

bool WroteOneLine(LogScene& scene)
{
    const bool wrote = scene.sink.lines == 1 && scene.sink.isRight;
    scene.sink.lines = 0;
    return wrote;
}

Operation Logging(const char* name, SceneTrial<LogScene>::Action run)
{
    Operation operation = OperationOn<LogScene>(name, run, WroteOneLine);
    operation.doesWithout = true;
    return operation;
}

TEST(LogWithoutMemory, WritesALineAllTheSame)
{
    SweepAll(
        "logs",
        {Logging("Log of a number", [](LogScene& s) { Logger::Log(17UL, context, s.sink); }),
         Logging("Log of an exception",
                 [](LogScene& s) { Logger::Log(s.failure, context, s.sink); }),
         Logging("Log of a pointer to one",
                 [](LogScene& s) { Logger::Log(&s.failure, context, s.sink); }),
         Logging("Log of a text", [](LogScene& s) { Logger::Log("text", context, s.sink); }),
         Logging("Log of a wide text", [](LogScene& s) { Logger::Log(L"text", context, s.sink); }),
         Logging("Log of a long text",
                 [](LogScene& s) { Logger::Log(s.longText.c_str(), context, s.sink); }),
         Logging("Log of a long wide text",
                 [](LogScene& s) { Logger::Log(s.longWideText.c_str(), context, s.sink); })});
}

// The built-in sink, on a standard error stream that nobody reads.
struct SinkScene
{
    SinkScene() : line(3000, L'x'), before(dup(STDERR_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~SinkScene()
    {
        dup2(before, STDERR_FILENO);
        close(before);
    }
    SinkScene(const SinkScene&) = delete;
    SinkScene& operator=(const SinkScene&) = delete;
    Bytes GetState() { return {}; }

    std::wstring line;
    int before;
};

TEST(LogWithoutMemory, ReachesTheBuiltInSink)
{
    Operation operation = OperationOn<SinkScene>(
        "the built-in sink",
        [](SinkScene& s) {
            Diagnostics::Seh::SetDefaultLog(nullptr);
            Diagnostics::Seh::GetDefaultLog().Write(s.line.c_str());
        },
        [](SinkScene&) { return true; });
    operation.doesWithout = true;
    SweepAll("the built-in sink", {operation});
}

struct SplitScene
{
    Bytes GetState() { return Bytes(pieces.size()); }

    std::string text = "a first piece that is long,;a second one of the same length;;third";
    std::vector<std::string> delimiters = {",;", ";"};
    std::vector<std::string> pieces;
};

TEST(SplitWithoutMemory, GivesAllPiecesOrNone)
{
    SweepAll("splits",
             {OperationOn<SplitScene>(
                  "split", [](SplitScene& s) { s.pieces = split(s.text, s.delimiters, false); },
                  [](SplitScene& s) { return s.pieces.size() == 3 && s.pieces[2] == "third"; }),
              OperationOn<SplitScene>(
                  "split that keeps empty pieces",
                  [](SplitScene& s) { s.pieces = split(s.text, s.delimiters, true); },
                  [](SplitScene& s) { return s.pieces.size() == 4 && s.pieces[2].empty(); })});
}

struct CopyScene
{
    Bytes GetState() { return Bytes(destination, destination + sizeof destination); }
    bool Holds(std::size_t count) const
    {
        for (std::size_t i = 0; i != count; ++i)
            if (destination[i] != 7)
                return false;
        return destination[count] == 0;
    }

    CopyScene() { std::fill(std::begin(source), std::end(source), 7); }

    alignas(16) unsigned char source[512] = {};
    alignas(16) unsigned char destination[512] = {};
};

// None of these allocates: with no memory at all they do their work.
TEST(WithoutMemory, CopiesAndLevelsGoOn)
{
    SweepAll(
        "copies and levels",
        {OperationOn<CopyScene>(
             "intelMemcopy", [](CopyScene& s) { intelMemcopy(s.source, s.destination, 500); },
             [](CopyScene& s) { return s.Holds(500); }),
         OperationOn<CopyScene>(
             "copyByDwords", [](CopyScene& s) { copyByDwords(s.source, s.destination, 499); },
             [](CopyScene& s) { return s.Holds(499); }),
         OperationOn<CopyScene>(
             "copySimulationUnaligned",
             [](CopyScene& s) { copySimulationUnaligned(s.source, s.destination, 320, 16); },
             [](CopyScene& s) { return s.Holds(320); }),
         OperationOn<CopyScene>(
             "copySimulationAlignedFixed",
             [](CopyScene& s) { copySimulationAlignedFixed(s.source, s.destination, 350, 5); },
             [](CopyScene& s) { return s.Holds(320); }),
         OperationOn<CopyScene>(
             "copySimulationAlignedVariable",
             [](CopyScene& s) { copySimulationAlignedVariable(s.source, s.destination, 350, 5); },
             [](CopyScene& s) { return s.Holds(320); }),
         OperationOn<CopyScene>(
             "the processor's level",
             [](CopyScene& s) {
                 const int level = SystemTools::GetSseVersion();
                 SystemTools::LimitSseVersion(1);
                 s.destination[0] = SystemTools::GetSseVersion() <= 1 ? 1 : 0;
                 SystemTools::LimitSseVersion(level);
             },
             [](CopyScene& s) { return s.destination[0] == 1; })});
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport
