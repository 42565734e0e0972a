#include "tools/pelkraft/pattern_command.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/pattern_report.h"
#include "tools/pelkraft/share_plot.h"
#include "tools/pelkraft/text_output.h"

#include <CLI/CLI.hpp>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* patternHelp =
    "Shows what a pattern does, how near it is to the limits, which engines load it, and what is\n"
    "wrong or odd about its text: each finding with its line, its column and a hint. The exit\n"
    "code is 1 where there are errors or warnings, and 4 where no engine loads the text.\n\n";

class PatternCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("pattern", "Explain and check a dot-pattern text");
        verb->add_option("FILE", input, "The pattern text")->required();
        verb->add_option("--plot", plot,
                         "Draw the share of every ink value as SVG, expected beside measured");
        verb->add_flag("--no-clobber", rules.noClobber, "Refuse to overwrite a file");
        AddCommonOptions(*verb, common, JsonUse::Result);
        verb->footer(std::string(patternHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        RefuseOtherEnding(plot, rules.kind);
        CatchInterrupts();
        const PatternText text = PatternText::Load(input);
        const PatternReport report(text);
        StopIfInterrupted(plot);
        PrintText(common.json ? PatternJson(report) : ExplainPattern(report));
        if (report.LoadingEngines().empty())
            PrintError(input, "no engine loads it: \"" + report.Refusal() + "\"");
        else if (!plot.empty() && common.dryRun)
            AtomicOutput::Check(plot, rules);
        else if (!plot.empty())
            DrawPlot(text, report);
        return report.Code();
    }

private:
    void DrawPlot(const PatternText& text, const PatternReport& report) const
    {
        std::string refusal;
        auto pattern = TryPattern(text, DotWeavePattern::X86, refusal);
        if (pattern == nullptr && SseEngineRuns())
            pattern = TryPattern(text, DotWeavePattern::Sse, refusal);
        if (pattern == nullptr)
            throw Failure(ExitCode::BadPattern, input,
                          "can't be drawn: \"" + refusal +
                              "\"; supported are patterns that the x86 or the sse engine loads");
        StopIfInterrupted(plot);
        WriteWholeFile(plot,
                       DrawShares(input, report.outline,
                                  MeasureShares(report.outline, report.model, *pattern)),
                       rules);
    }

    CLI::App* verb = nullptr;
    std::string input;
    std::string plot;
    OutputRules rules = {FileKind::Svg};
    CommonOptions common;
};

} // namespace

std::unique_ptr<ISubcommand> MakePatternCommand()
{
    return std::make_unique<PatternCommand>();
}

} // namespace zvk::Pelkraft::Client
