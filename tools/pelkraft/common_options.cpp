#include "tools/pelkraft/common_options.h"

#include "tools/pelkraft/message_style.h"
#include "tools/pelkraft/workers.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* commonGroup = "Common options";

template <typename Change>
void ChangeStyle(Change change)
{
    MessageStyle style = GetMessageStyle();
    change(style);
    SetMessageStyle(style);
}

void AddMessageOptions(CLI::App& verb)
{
    CLI::Option* const quiet = verb.add_flag_callback(
        "-q,--quiet", [] { ChangeStyle([](MessageStyle& style) { style.quiet = true; }); },
        "Tell errors only");
    quiet->group(commonGroup);
    verb.add_flag_callback(
            "-v,--verbose", [] { ChangeStyle([](MessageStyle& style) { style.verbose = true; }); },
            "Tell what was done, and the pages of each warning")
        ->excludes(quiet)
        ->group(commonGroup);
    verb.add_option_function<std::string>(
            "--progress",
            [](const std::string& form) {
                ChangeStyle([&](MessageStyle& style) {
                    style.progress = form == "json"    ? ProgressForm::Json
                                     : form == "never" ? ProgressForm::Never
                                                       : ProgressForm::Auto;
                });
            },
            "Progress on the standard error stream: a line on a terminal, or JSON, an object a "
            "line, for programs")
        ->check(CLI::IsMember({"auto", "never", "json"}))
        ->default_str("auto")
        ->group(commonGroup);
    verb.add_option_function<std::string>(
            "--color",
            [](const std::string& form) {
                ChangeStyle([&](MessageStyle& style) { style.colour = form == "auto"; });
            },
            "Colours in messages, where a terminal shows them and NO_COLOR is not set")
        ->check(CLI::IsMember({"auto", "never"}))
        ->default_str("auto")
        ->group(commonGroup);
}

} // namespace

void TakeColourWish(const std::vector<std::string>& words)
{
    const auto option = std::find(words.begin(), words.end(), "--color");
    const bool isApart = option != words.end() && option + 1 != words.end() && option[1] == "never";
    if (isApart || std::find(words.begin(), words.end(), "--color=never") != words.end())
        ChangeStyle([](MessageStyle& style) { style.colour = false; });
}

void AddCommonOptions(CLI::App& verb, CommonOptions& options, JsonUse jsonUse)
{
    AddMessageOptions(verb);
    options.threads = DefaultThreads();
    verb.add_option("--threads", options.threads,
                    "Threads that share the work; the result is the same for any number")
        ->check(CLI::Range(1, mostThreads))
        ->capture_default_str()
        ->group(commonGroup);
    CLI::Option* const explain =
        verb.add_flag("--explain", options.explain, "Print the plan, and how long the work took");
    CLI::Option* const json = verb.add_flag("--json", options.json,
                                            jsonUse == JsonUse::Plan ? "Print the plan as JSON"
                                                                     : "Print JSON, for programs");
    explain->group(commonGroup);
    json->group(commonGroup);
    if (jsonUse == JsonUse::Plan)
        json->needs(explain);
    verb.add_flag("--dry-run", options.dryRun, "Check everything beforehand, and write nothing")
        ->group(commonGroup);
}

} // namespace zvk::Pelkraft::Client
