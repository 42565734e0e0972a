#include "tools/pelkraft/program.h"

#include "tools/pelkraft/build_info.h"
#include "tools/pelkraft/check_command.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/convert_command.h"
#include "tools/pelkraft/coverage_command.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/help_format.h"
#include "tools/pelkraft/info_command.h"
#include "tools/pelkraft/join_command.h"
#include "tools/pelkraft/mask_command.h"
#include "tools/pelkraft/message_style.h"
#include "tools/pelkraft/output_rules.h"
#include "tools/pelkraft/pattern_command.h"
#include "tools/pelkraft/preview_command.h"
#include "tools/pelkraft/simulate_command.h"
#include "tools/pelkraft/split_command.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/usage_errors.h"
#include "tools/pelkraft/workers.h"
#include "zvk/diagnostics.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>
#include <sstream>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

// Failures of the library arrive as exceptions and are told on one line of our own.
class SilentLog final : public Diagnostics::ILogSink
{
public:
    void Write(const wchar_t*) override {}
};

// The parser writes its texts to streams, and those leave out what they find no memory for. Only
// errno tells.
void RefuseCutTexts()
{
    if (errno == ENOMEM)
        throw std::bad_alloc();
}

// Prints what a call for help or for the version asks for.
int Answer(const CLI::App& program, const CLI::Success& success)
{
    std::ostringstream text;
    const int code = program.exit(success, text, text);
    RefuseCutTexts();
    PrintText(text.str());
    return code;
}

using Verbs = std::vector<std::unique_ptr<ISubcommand>>;

// Tells those who ask what the work runs on, where a verb works at all.
void NoteMachine(const CLI::App& program)
{
    const CLI::App* verb = &program;
    while (!verb->get_subcommands().empty())
        verb = verb->get_subcommands().front();
    const CLI::Option* const option = verb->get_option_no_throw("--threads");
    const int threads =
        option != nullptr && option->count() != 0 ? option->as<int>() : DefaultThreads();
    PrintNote({}, "processor level " + LevelText() + "; " + std::to_string(threads) +
                      (threads == 1 ? " thread" : " threads"));
}

int ParseAndRun(CLI::App& program, const Verbs& verbs, int argc, const char* const* argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    TakeColourWish(words);
    try {
        program.parse(argc, argv);
    } catch (const CLI::Success& success) {
        return Answer(program, success);
    } catch (const CLI::ParseError& error) {
        RefuseCutTexts();
        RefuseEmptyValues(program, words);
        throw Failure(ExitCode::Usage, {}, UsageError(program, error));
    }
    RefuseEmptyValues(program, words);
    NoteMachine(program);
    const auto chosen =
        std::find_if(verbs.begin(), verbs.end(), [](const auto& verb) { return verb->Chosen(); });
    return static_cast<int>((*chosen)->Run());
}

int RunVerb(int argc, const char* const* argv)
{
    errno = 0;
    CLI::App program("Row conversion and dot patterns for print work on TIFF files", "pelkraft");
    program.footer(exitCodeHelp);
    program.require_subcommand(1);
    program.formatter(MakeHelpFormat());
    // A slash begins a path on every system.
    program.allow_windows_style_options(false);
    AddBuildInfo(program);
    Verbs verbs;
    verbs.push_back(MakeCheckCommand());
    verbs.push_back(MakeConvertCommand());
    verbs.push_back(MakeCoverageCommand());
    verbs.push_back(MakeInfoCommand());
    verbs.push_back(MakeJoinCommand());
    verbs.push_back(MakeMaskCommand());
    verbs.push_back(MakePatternCommand());
    verbs.push_back(MakePreviewCommand());
    verbs.push_back(MakeSimulateCommand());
    verbs.push_back(MakeSplitCommand());
    for (const auto& verb : verbs)
        verb->Register(program);

    try {
        return ParseAndRun(program, verbs, argc, argv);
    } catch (const Failure& failure) {
        if (failure.Code() != ExitCode::Usage)
            throw;
        throw Failure(ExitCode::Usage, failure.File(), WithHelp(program, failure.what()));
    }
}

} // namespace

int RunProgram(int argc, const char* const* argv)
{
    SilentLog silentLog;
    Diagnostics::Seh::SetDefaultLog(&silentLog);
    SetMessageStyle({});
    ForgetInputs();
    try {
        return RunVerb(argc, argv);
    } catch (...) {
        return static_cast<int>(ReportCurrentException());
    }
}

} // namespace zvk::Pelkraft::Client
