#include "tools/pelkraft/coverage_command.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/coverage_report.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/page_coverage.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/text_output.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* coverageHelp =
    "Of each ink the mean and the largest coverage, and of all inks of a pixel together the\n"
    "largest with its place, from 0, 0 at the first stored pixel, and how many are above the\n"
    "limit.\n"
    "A square window moves over the page, and the place is shown where its mean is largest: an\n"
    "amount of ink that matters to the press, where a single pixel doesn't. Sums are exact, and\n"
    "samples beyond full ink count as full. The exit code is 1 where a pixel is above the limit.\n"
    "The map shows the first of the pages: white without ink, over blue to yellow at the limit,\n"
    "red above it.\n\n";

// The sum of all pages.
struct Total
{
    int pages = 0;
    std::uint64_t rows = 0;
};

class CoverageCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("coverage", "Measure how much ink lies where");
        verb->add_option("FILE", input.path, "The file to read")->required();
        verb->add_option_function<std::string>(
                "--limit", [this](const std::string& words) { limit = ReadLimit(words); },
                "Percent of all inks together that a pixel may have")
            ->type_name("PCT")
            ->default_str("300");
        verb->add_option_function<std::string>(
                "--window",
                [this](const std::string& words) {
                    window = ReadWindowSize(words);
                    windowIsGiven = true;
                },
                "Side of the window, in mm, in or px")
            ->type_name("SIDE")
            ->default_str("1mm");
        verb->add_option("--map", map, "Also write a PNG that shows where the ink lies")
            ->type_name("FILE");
        verb->add_flag("--no-clobber", rules.noClobber, "Refuse to overwrite a file");
        AddInputOptions(*verb, input, RangeWords::ReadingAlone);
        AddCommonOptions(*verb, common, JsonUse::Result);
        verb->footer(std::string(coverageHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        CatchInterrupts();
        const auto start = std::chrono::steady_clock::now();
        TiffFile file = OpenInput(input, map);
        const Total total = PlanAll(file);
        if (!map.empty())
            AtomicOutput::Check(map, rules);
        if (common.dryRun)
            return ExitCode::Done;
        const bool above = CountAll(file, total);
        if (common.explain && !common.json)
            PrintSpeed({}, total.rows, std::chrono::steady_clock::now() - start);
        for (const std::string& warning : file.Warnings())
            PrintWarning(input.path, warning);
        return above ? ExitCode::Warnings : ExitCode::Done;
    }

private:
    CoveragePlan PlanPage(const TiffFile& file) const
    {
        return PlanCoverage(file, input, window, limit);
    }

    // Refuses before the first row of the first page what is wrong with the last.
    Total PlanAll(const TiffFile& file) const
    {
        Total total;
        bool toldOfCut = false;
        PageGroups plans;
        VisitPages(file, input.pages, [&](int page) {
            const CoveragePlan plan = PlanPage(file);
            WarnOfOrientation(file, "places and the map are those of the stored pixels");
            if (plan.windowIsCut && windowIsGiven && !std::exchange(toldOfCut, true))
                PrintWarning(input.path, "--window reaches beyond the page, and is cut to " +
                                             std::to_string(plan.window->width) + " x " +
                                             std::to_string(plan.window->height) + " pixels");
            ++total.pages;
            total.rows += plan.picture.height;
            if (!common.explain || common.json)
                return;
            std::string text = ": " + std::to_string(plan.codes.none) + " is no ink and " +
                               std::to_string(plan.codes.full) + " full ink, " +
                               Counted(plan.inks.size(), "ink", "inks");
            if (plan.window)
                text += ", a window of " + std::to_string(plan.window->width) + " x " +
                        std::to_string(plan.window->height) + " pixels";
            plans.Add(page,
                      text + ", on " +
                          Counted(static_cast<std::size_t>(common.threads), "thread", "threads") +
                          '\n');
        });
        PrintText(PlanText(plans));
        return total;
    }

    // Answers whether a pixel is above the limit.
    bool CountAll(const TiffFile& file, const Total& total) const
    {
        bool above = false;
        std::string words = Shown(InputName(input.path)) + '\n';
        Json pages = Json::array();
        std::string picture;
        {
            Progress progress("coverage " + input.path, total.rows, total.pages);
            VisitPages(file, input.pages, [&](int page) {
                const CoveragePlan plan = PlanPage(file);
                std::optional<CoverageMap> shown;
                if (!map.empty() && picture.empty())
                    shown.emplace(plan.picture.width, plan.picture.height, plan.resolution);
                progress.StartPage();
                const PageCoverage found =
                    CountCoverage(file, plan, shown ? &*shown : nullptr, common.threads, progress);
                above = above || found.pixelsAbove > 0;
                if (shown)
                    picture = shown->Png(plan.Full(), limit);
                words += CoverageWords(plan, found, page, limit);
                pages.push_back(CoverageJson(plan, found, page));
            });
        }
        file.RequireSound();
        StopIfInterrupted(map);
        if (!map.empty())
            WriteWholeFile(map, picture, rules);
        PrintText(common.json ? JsonText({{"schema", 1},
                                          {"file", input.path},
                                          {"limit", static_cast<double>(limit) / 1000},
                                          {"above_limit", above},
                                          {"pages", std::move(pages)}})
                              : words);
        return above;
    }

    CLI::App* verb = nullptr;
    InputOptions input;
    CommonOptions common;
    OutputRules rules = {FileKind::Png, false};
    WindowSize window;
    bool windowIsGiven = false;
    std::string map;
    std::uint64_t limit = 300000;
};

} // namespace

std::unique_ptr<ISubcommand> MakeCoverageCommand()
{
    return std::make_unique<CoverageCommand>();
}

} // namespace zvk::Pelkraft::Client
