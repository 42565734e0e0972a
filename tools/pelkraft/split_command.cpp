#include "tools/pelkraft/split_command.h"

#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/json.h"
#include "tools/pelkraft/page_split.h"
#include "tools/pelkraft/plate_names.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/tiff_output.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <memory>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* splitHelp =
    "BASE is the path and the first part of the plates' names: out/page makes out/page(Cyan).tif,\n"
    "and with --naming dot out/page.Cyan.tif; out/ names them after IN.tif. In an ink's name,\n"
    "bytes that no file name takes are written as %XX. A plate has one channel, is MinIsBlack,\n"
    "and 0 is full ink, so that it looks like a print of that ink; pelkraft join makes the page\n"
    "again. Alpha channels are left out, unless --inks names them.\n\n";

// The sum of all pages, and what all of them share.
struct Total
{
    std::uint64_t rows = 0;
    // One plate has so many.
    std::uint64_t bytes = 0;
    int pages = 0;
    std::vector<std::string> inks;
};

// The plates that are being written.
class PlateOutputs
{
public:
    PlateOutputs(const std::vector<std::string>& paths, const OutputOptions& options,
                 std::uint64_t sampleBytes, int pages)
    {
        for (const std::string& path : paths) {
            OutputOptions plate = options;
            plate.path = path;
            outputs.push_back(std::make_unique<TiffOutput>(plate, sampleBytes, pages));
        }
    }
    std::vector<const TiffFile*> Files() const
    {
        std::vector<const TiffFile*> files;
        for (const auto& output : outputs)
            files.push_back(&output->File());
        return files;
    }

    void Finish() const
    {
        for (const auto& output : outputs)
            output->Finish();
    }

    void Commit() const
    {
        for (const auto& output : outputs)
            output->Commit();
    }

private:
    std::vector<std::unique_ptr<TiffOutput>> outputs;
};

class SplitCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("split", "Split a page into a plate for each ink");
        verb->add_option("IN.tif", input.path, "The file to read")->required();
        verb->add_option("BASE", base, "Path and first part of the plates' names")->required();
        verb->add_option("--inks", inks, "Inks to split off, by number or name: 0,Black")
            ->type_name("LIST");
        verb->add_option("--naming", naming, "Names as in page(Cyan).tif, or as in page.Cyan.tif")
            ->check(CLI::IsMember({"gs", "dot"}))
            ->capture_default_str();
        AddInputOptions(*verb, input, RangeWords::ReadingAlone);
        AddOutputOptions(*verb, output);
        AddCommonOptions(*verb, common);
        verb->footer(std::string(splitHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        CatchInterrupts();
        NamePlatesInFolder();
        const auto start = std::chrono::steady_clock::now();
        TiffFile file = OpenInput(input, base);
        const Total total = PlanAll(file);
        if (common.dryRun) {
            for (const std::string& path : Paths(total))
                TiffOutput::Check(PlateOptions(path));
            return ExitCode::Done;
        }
        const PlateOutputs plates(Paths(total), output, total.bytes, total.pages);
        Progress progress("split " + input.path, total.rows, total.pages);
        VisitPages(file, input.pages, [&](int) {
            progress.StartPage();
            SplitPage(file, plates.Files(), PlanPage(file), common.threads, progress);
        });
        file.RequireSound();
        plates.Finish();
        if (common.explain && !common.json)
            PrintSpeed({}, total.rows, std::chrono::steady_clock::now() - start);
        StopIfInterrupted(base);
        file.Close();
        plates.Commit();
        for (const std::string& warning : file.Warnings())
            PrintWarning(input.path, warning);
        return ExitCode::Done;
    }

private:
    // In a folder the plates are named after the picture.
    void NamePlatesInFolder()
    {
        if (base.empty() || PathOf(base).has_filename())
            return;
        if (input.path == standardStream)
            throw Failure(ExitCode::Usage, base,
                          "is a folder, and what comes through a pipe has no name for the plates; "
                          "give the first part of their names too: " +
                              base + "page");
        const std::u8string name = PathOf(input.path).filename().u8string();
        base.append(name.begin(), name.end());
    }

    SplitPlan PlanPage(const TiffFile& file) const { return PlanSplit(file, input, inks, output); }

    OutputOptions PlateOptions(const std::string& path) const
    {
        OutputOptions plate = output;
        plate.path = path;
        return plate;
    }

    std::vector<std::string> Paths(const Total& total) const
    {
        return PlatePaths(base, total.inks,
                          naming == "dot" ? PlateNaming::Dot : PlateNaming::Parentheses);
    }

    // Refuses before the first row of the first page what is wrong with the last.
    Total PlanAll(const TiffFile& file) const
    {
        Total total;
        Json pages = Json::array();
        PageGroups plans;
        VisitPages(file, input.pages, [&](int page) {
            const SplitPlan plan = PlanPage(file);
            if (total.rows == 0)
                total.inks = plan.inks;
            else if (plan.inks != total.inks)
                throw Failure(ExitCode::Unsupported, input.path,
                              "has other inks than the page before, and a plate is about one ink; "
                              "--page takes "
                              "some pages alone");
            total.rows += plan.to.height;
            ++total.pages;
            // Samples that don't compress may grow by a half.
            total.bytes += static_cast<std::uint64_t>(plan.to.RowBytes()) * plan.to.height / 2 *
                           (plan.to.compression == COMPRESSION_NONE ? 2 : 3);
            for (const std::string& warning : plan.tags.warnings)
                PrintWarning(input.path, warning);
            if (common.json)
                pages.push_back(ExplainJson(plan, Paths(total), page));
            else if (common.explain)
                plans.Add(page, Explain(plan, Paths(total)));
        });
        PrintText(common.json ? JsonText({{"schema", 1}, {"pages", std::move(pages)}})
                              : PlanText(plans));
        return total;
    }

    // It follows the label of the page on the same line.
    static std::string Explain(const SplitPlan& plan, const std::vector<std::string>& paths)
    {
        std::string text =
            ": " + std::to_string(plan.to.width) + " x " + std::to_string(plan.to.height) +
            " pixels, " + std::to_string(plan.codes.none) + " is no ink and " +
            std::to_string(plan.codes.full) + " full ink" + (plan.turned ? ", turned" : ", kept") +
            "; plates of " + plan.rows.Request().to.Words() + ", " +
            CompressionName(plan.to.compression) + '\n';
        for (std::size_t plate = 0; plate < paths.size(); ++plate)
            text += "  channel " + std::to_string(plan.channels[plate]) + ": " +
                    Shown(plan.inks[plate]) + ", to " + Shown(paths[plate]) + '\n';
        return text;
    }

    static Json ExplainJson(const SplitPlan& plan, const std::vector<std::string>& paths, int page)
    {
        Json plates = Json::array();
        for (std::size_t plate = 0; plate < paths.size(); ++plate)
            plates.push_back({{"channel", plan.channels[plate]},
                              {"ink", plan.inks[plate]},
                              {"plate", paths[plate]}});
        return {{"page", page},
                {"width", plan.to.width},
                {"height", plan.to.height},
                {"bits", plan.to.bits},
                {"code_0", plan.codes.none},
                {"code_100", plan.codes.full},
                {"turned", plan.turned},
                {"compression", CompressionName(plan.to.compression)},
                {"plates", std::move(plates)}};
    }

    CLI::App* verb = nullptr;
    InputOptions input;
    OutputOptions output;
    CommonOptions common;
    std::string base;
    std::string inks;
    std::string naming = "gs";
};

} // namespace

std::unique_ptr<ISubcommand> MakeSplitCommand()
{
    return std::make_unique<SplitCommand>();
}

} // namespace zvk::Pelkraft::Client
