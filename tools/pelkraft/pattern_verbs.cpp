#include "tools/pelkraft/pattern_verbs.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/pattern_diff.h"
#include "tools/pelkraft/pattern_fix.h"
#include "tools/pelkraft/pattern_report.h"
#include "tools/pelkraft/pattern_sarif.h"
#include "tools/pelkraft/share_plot.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/unified_diff.h"

#include <algorithm>
#include <list>

namespace zvk::Pelkraft::Client {
namespace {

// A text and all that is known about it. It stays where it is: the report points to the text.
struct ReadText
{
    explicit ReadText(const std::string& path) : text(PatternText::Load(path)), report(text) {}
    ReadText(const ReadText&) = delete;
    ReadText& operator=(const ReadText&) = delete;

    PatternText text;
    PatternReport report;
};

void TellIfRefused(const PatternReport& report)
{
    if (report.LoadingEngines().empty())
        PrintError(report.text.Path(), "no engine loads it: \"" + report.Refusal() + "\"");
}

class ReadTexts
{
public:
    explicit ReadTexts(const std::vector<std::string>& paths)
    {
        for (const std::string& path : paths) {
            StopIfInterrupted(path);
            reports.push_back(&texts.emplace_back(path).report);
        }
    }

    const std::vector<const PatternReport*>& Reports() const { return reports; }

    ExitCode Code() const
    {
        ExitCode worst = ExitCode::Done;
        for (const PatternReport* report : reports)
            worst = std::max(worst, report->Code());
        return worst;
    }

    void TellRefused() const
    {
        for (const PatternReport* report : reports)
            TellIfRefused(*report);
    }

private:
    std::list<ReadText> texts;
    std::vector<const PatternReport*> reports;
};

bool IsStandardOutput(const std::string& path)
{
    return path.empty() || path == "-";
}

void DrawText(SvgPage& page, const PatternReport& report)
{
    std::string refusal;
    const auto pattern = TryDrawingPattern(report.text, refusal);
    if (pattern == nullptr)
        throw Failure(ExitCode::BadPattern, report.text.Path(),
                      "can't be drawn: \"" + refusal +
                          "\"; supported are patterns that the x86 or the sse engine loads");
    const std::vector<StepShares> shares =
        MeasureShares(report.outline, report.model, pattern.get());
    DrawPattern(page,
                {report.text.Path(), report.outline, shares, MeasureSpectra(report.text, shares)});
}

void WriteOut(const PatternOutput& output, const std::string& bytes)
{
    if (output.dryRun) {
        if (!IsStandardOutput(output.path))
            AtomicOutput::Check(output.path, output.rules);
    } else if (IsStandardOutput(output.path)) {
        PrintText(bytes);
    } else {
        WriteWholeFile(output.path, bytes, output.rules);
    }
}

// Notes want nothing mended.
std::string LeftFindings(const PatternReport& after)
{
    std::string kinds;
    for (const Severity severity : {Severity::Error, Severity::Warning}) {
        const std::size_t count = CountFindings(after.findings, severity);
        const std::string kind = SeverityName(severity);
        if (count != 0)
            kinds += (kinds.empty() ? "" : " and ") + Counted(count, kind, kind + "s");
    }
    return kinds;
}

void TellFixed(const FixedText& fixed, const PatternReport& after)
{
    const std::string& path = after.text.Path();
    const std::string left = LeftFindings(after);
    const std::string changed = Counted(fixed.changes, "place", "places") + " changed";
    const std::string advice = "; pelkraft pattern lint shows " + left;
    if (fixed.isGivenUp)
        PrintWarning(path, "the safe hints alone don't mend it, and it stays as it is" + advice);
    else if (left.empty())
        PrintNote(path, changed);
    else if (fixed.changes == 0)
        PrintWarning(path, "no finding has a safe hint, and it stays as it is" + advice);
    else
        PrintWarning(path, changed + ", and the rest has no safe hint" + advice);
    TellIfRefused(after);
}

// The code is that of the text as it becomes.
ExitCode FixText(const PatternText& text, const PatternOutput& output)
{
    if (text.EndsAtZero())
        throw Failure(ExitCode::BadPattern, text.Path(),
                      "holds a zero byte, and can't be mended; save it as UTF-8 first");
    const FixedText fixed = FixPattern(text);
    const PatternText after(text.Path(), fixed.bytes);
    const PatternReport report(after);
    const bool inPlace = output.path.empty();
    if (output.dryRun)
        PrintText(UnifiedDiff(text.Path(), text.Bytes(), fixed.bytes));
    const PatternOutput target = inPlace ? PatternOutput{text.Path(), {}, output.dryRun} : output;
    // In place a text that stays the same isn't touched.
    if (!inPlace || fixed.changes > 0)
        WriteOut(target, fixed.bytes);
    TellFixed(fixed, report);
    return report.Code();
}

} // namespace

ExitCode ExplainTexts(const std::vector<std::string>& paths, PatternFormat format)
{
    const ReadTexts texts(paths);
    if (format == PatternFormat::Json) {
        PrintText(ExplainTextsJson(texts.Reports()));
    } else if (format == PatternFormat::Sarif) {
        PrintText(PatternSarif(texts.Reports(), texts.Code()));
    } else {
        std::string words;
        for (const PatternReport* report : texts.Reports()) {
            if (!words.empty())
                words += '\n';
            words += ExplainPattern(*report);
        }
        PrintText(words);
    }
    texts.TellRefused();
    return texts.Code();
}

ExitCode LintTexts(const std::vector<std::string>& paths, PatternFormat format)
{
    const ReadTexts texts(paths);
    if (format == PatternFormat::Json)
        PrintText(LintTextsJson(texts.Reports()));
    else if (format == PatternFormat::Sarif)
        PrintText(PatternSarif(texts.Reports(), texts.Code()));
    else
        PrintText(LintWords(texts.Reports()));
    texts.TellRefused();
    return texts.Code();
}

ExitCode PlotTexts(const std::vector<std::string>& paths, const PatternOutput& output)
{
    const ReadTexts texts(paths);
    SvgPage page = PatternPage();
    for (const PatternReport* report : texts.Reports())
        DrawText(page, *report);
    WriteOut(output, page.Finish());
    return texts.Code();
}

ExitCode FixTexts(const std::vector<std::string>& paths, const PatternOutput& output)
{
    if (!output.path.empty() && paths.size() > 1)
        throw Failure(ExitCode::Usage, output.path,
                      "can't take " + std::to_string(paths.size()) +
                          " texts; --output goes with one text, and without it each is written "
                          "back");
    ExitCode worst = ExitCode::Done;
    for (const std::string& path : paths)
        worst = std::max(worst, FixText(PatternText::Load(path), output));
    return worst;
}

ExitCode DiffTexts(const std::string& left, const std::string& right, PatternFormat format)
{
    const ReadTexts texts({left, right});
    texts.TellRefused();
    for (const PatternReport* report : texts.Reports()) {
        if (report->LoadingEngines().empty())
            return ExitCode::BadPattern;
    }
    const auto differences = CompareReports(*texts.Reports()[0], *texts.Reports()[1]);
    PrintText(format == PatternFormat::Json ? DifferenceJson(differences, left, right)
                                            : DifferenceWords(differences, left, right));
    return differences.empty() ? ExitCode::Done : ExitCode::Warnings;
}

} // namespace zvk::Pelkraft::Client
