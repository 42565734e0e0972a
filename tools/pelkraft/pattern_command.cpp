#include "tools/pelkraft/pattern_command.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/pattern_report.h"
#include "tools/pelkraft/pattern_verbs.h"
#include "tools/pelkraft/system_calls.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/usage_errors.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <functional>
#include <map>
#include <system_error>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* patternHelp =
    "Shows what a pattern does, how near it is to the limits, which engines load it, and what is\n"
    "wrong or odd about its text: each finding with its line, its column and a hint. The exit\n"
    "code is 1 where there are errors or warnings, and 4 where no engine loads the text. A file\n"
    "that is named like a verb is written with its folder: ./lint.\n\n";

constexpr const char* fixHelp =
    "Takes the hints that are certainly what the author meant: a known name or keyword in place\n"
    "of a misspelled one, a blank beside a keyword, and no byte order mark. The text stays as it\n"
    "is where it would not load then. The exit code is that of the text as it becomes.\n\n";

constexpr const char* diffHelp =
    "Compares random source and seed, names and their order, steps, the alternatives of each with\n"
    "their shares, the shares of values and the mean inks. Blanks, comments, the order of\n"
    "alternatives and the size of weights make no difference. The exit code is 1 where the texts\n"
    "differ, and 4 where no engine loads one of them.\n\n";

class PatternCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("pattern", "Explain and check a dot-pattern text");
        verb->add_option("FILE", input, "The pattern text, without a verb");
        verb->add_option("--plot", plot, "Draw what pattern plot draws, as SVG");
        verb->add_flag("--no-clobber", output.rules.noClobber, "Refuse to overwrite a file");
        AddCommonOptions(*verb, common, JsonUse::Result);
        verb->footer(std::string(patternHelp) + exitCodeHelp);
        verb->require_subcommand(0, 1);
        RegisterExplain();
        RegisterLint();
        RegisterPlot();
        RegisterFix();
        RegisterDiff();
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        CatchInterrupts();
        output.dryRun = common.dryRun;
        const std::vector<CLI::App*> chosen = verb->get_subcommands();
        if (chosen.empty())
            return RunWithoutVerb();
        if (!input.empty() || !plot.empty())
            throw Failure(ExitCode::Usage, input,
                          "FILE and --plot go with pelkraft pattern alone, without a verb");
        return runs.at(chosen.front())();
    }

private:
    CLI::App* AddVerb(const char* name, const char* words, const std::string& help,
                      std::function<ExitCode()> run)
    {
        CLI::App* const added = verb->add_subcommand(name, words);
        runs[added] = std::move(run);
        added->footer(help + exitCodeHelp);
        return added;
    }

    void AddTexts(CLI::App& to) { to.add_option("TEXT", texts, "The pattern texts")->required(); }

    // --json says the same of the format, and doesn't go with it.
    void AddFormat(CLI::App& to, const std::vector<std::string>& names)
    {
        AddCommonOptions(to, common, JsonUse::Result);
        to.add_option("--format", format, "Form of the output")
            ->check(CLI::IsMember(names))
            ->capture_default_str()
            ->excludes("--json");
    }

    void AddOutput(CLI::App& to, const char* words)
    {
        to.add_option("--output", output.path, words)->type_name("FILE");
        to.add_flag("--no-clobber", output.rules.noClobber, "Refuse to overwrite a file");
        AddCommonOptions(to, common);
    }

    PatternFormat Format() const
    {
        if (common.json || format == "json")
            return PatternFormat::Json;
        return format == "sarif" ? PatternFormat::Sarif : PatternFormat::Text;
    }

    void RegisterExplain()
    {
        CLI::App* const added =
            AddVerb("explain", "Show all that is known of pattern texts", patternHelp,
                    [this] { return ExplainTexts(texts, Format()); });
        AddTexts(*added);
        AddFormat(*added, {"text", "json", "sarif"});
    }

    void RegisterLint()
    {
        CLI::App* const added = AddVerb("lint", "Show what is wrong or odd about pattern texts",
                                        patternHelp, [this] { return LintTexts(texts, Format()); });
        AddTexts(*added);
        AddFormat(*added, {"text", "json", "sarif"});
    }

    void RegisterPlot()
    {
        CLI::App* const added = AddVerb("plot", "Draw what pattern texts do, as SVG", "", [this] {
            output.rules.kind = FileKind::Svg;
            RefuseOtherEnding(output.path, output.rules.kind);
            return PlotTexts(texts, output);
        });
        AddTexts(*added);
        AddOutput(*added, "The drawing; - and none are the standard output");
    }

    void RegisterFix()
    {
        CLI::App* const added = AddVerb("fix", "Take the safe hints", fixHelp, [this] {
            output.rules.kind = FileKind::Text;
            RefuseOtherEnding(output.path, output.rules.kind);
            return FixTexts(texts, output);
        });
        AddTexts(*added);
        AddOutput(*added, "Where the text goes instead of to its own file; - is the standard "
                          "output");
    }

    void RegisterDiff()
    {
        CLI::App* const added = AddVerb("diff", "Compare what two pattern texts do", diffHelp,
                                        [this] { return DiffTexts(left, right, Format()); });
        added->add_option("A", left, "The pattern text on the left")->required();
        added->add_option("B", right, "The pattern text on the right")->required();
        AddFormat(*added, {"text", "json"});
    }

    void RefuseMisspeltVerb() const
    {
        const std::string nearest = NearestVerb(input, *verb);
        std::error_code unknown;
        const bool isPath = input.find_first_of("/\\") != std::string::npos;
        if (!nearest.empty() && !isPath && !std::filesystem::exists(PathOf(input), unknown))
            throw Failure(ExitCode::Usage, {},
                          "there is neither a verb nor a file \"" + input + "\". Did you mean " +
                              nearest + "?");
    }

    ExitCode RunWithoutVerb()
    {
        if (input.empty())
            throw Failure(ExitCode::Usage, {}, "FILE is required, or a verb such as lint");
        RefuseMisspeltVerb();
        output.path = plot;
        output.rules.kind = FileKind::Svg;
        RefuseOtherEnding(plot, output.rules.kind);
        const PatternText text = PatternText::Load(input);
        const PatternReport report(text);
        StopIfInterrupted(plot);
        PrintText(common.json ? PatternJson(report) : ExplainPattern(report));
        if (report.LoadingEngines().empty())
            PrintError(input, "no engine loads it: \"" + report.Refusal() + "\"");
        else if (!plot.empty())
            PlotTexts({input}, output);
        return report.Code();
    }

    CLI::App* verb = nullptr;
    std::map<CLI::App*, std::function<ExitCode()>> runs;
    std::string input;
    std::string plot;
    std::vector<std::string> texts;
    std::string left;
    std::string right;
    std::string format = "text";
    PatternOutput output;
    CommonOptions common;
};

} // namespace

std::unique_ptr<ISubcommand> MakePatternCommand()
{
    return std::make_unique<PatternCommand>();
}

} // namespace zvk::Pelkraft::Client
