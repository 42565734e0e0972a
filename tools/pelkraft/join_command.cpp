#include "tools/pelkraft/join_command.h"

#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/json.h"
#include "tools/pelkraft/page_join.h"
#include "tools/pelkraft/plate_names.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/tiff_output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* joinHelp =
    "A plate is a picture of one channel, and tells its ink by its name: page(Cyan).tif or\n"
    "page.Cyan.tif, with %XX for any byte; Cyan=PLATE names any other file. Cyan, magenta, yellow\n"
    "and black come first, then all others by name. Plates of several pages, page1(Cyan).tif and\n"
    "page2(Cyan).tif, make as many pages, and plates of many pages are joined page by page. Two\n"
    "plates of one ink whose names tell no two pages apart are refused. Where 0 is full ink, as "
    "in\n"
    "MinIsBlack plates, the samples are turned: the new pages are separated inks, and 0 is "
    "none.\n\n";

// The sum of all pages.
struct Total
{
    std::uint64_t rows = 0;
    std::uint64_t bytes = 0;
    int pages = 0;
};

// The plates of a group, open at the same page.
class OpenGroup
{
public:
    OpenGroup(const PlateGroup& newPlates, const Spool& spool)
        : plates(newPlates), files(OpenPlates(newPlates, spool))
    {}

    const PlateGroup& Plates() const { return plates; }
    const std::vector<TiffFile>& Files() const { return files; }

    template <typename Visit>
    void VisitPages(const PageChoice& pages, Visit visit) const
    {
        Client::VisitPages(files[0], pages, [&](int page) {
            const auto directory = static_cast<tdir_t>(page - 1);
            for (std::size_t plate = 1; plate < files.size(); ++plate) {
                if (TIFFSetDirectory(files[plate].Get(), directory) != 1)
                    files[plate].Throw(ExitCode::BadInput, "has a page " + std::to_string(page) +
                                                               " that can't be read");
            }
            visit(page);
        });
    }

    void Close()
    {
        for (TiffFile& file : files)
            file.Close();
    }

private:
    PlateGroup plates;
    std::vector<TiffFile> files;
};

std::string PlateWords(const PlateArgument& plate, const JoinedPlate& joined, std::size_t channel)
{
    return "  channel " + std::to_string(channel) + ": " + Shown(plate.ink) + ", from " +
           Shown(plate.path) + ", " + PhotometricName(joined.picture.photometric) + ", " +
           std::to_string(joined.codes.none) + " is no ink and " +
           std::to_string(joined.codes.full) + " full ink" +
           (joined.turned ? ", turned\n" : ", kept\n");
}

Json PlateJson(const PlateArgument& plate, const JoinedPlate& joined)
{
    return {{"ink", plate.ink},
            {"plate", plate.path},
            {"photometric", PhotometricName(joined.picture.photometric)},
            {"code_0", joined.codes.none},
            {"code_100", joined.codes.full},
            {"turned", joined.turned}};
}

class JoinCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("join", "Join the plates of a page");
        verb->add_option("OUT.tif", output.path, "The file to write")->required();
        verb->add_option("PLATE", arguments, "The plates, each a path or NAME=PATH")->required();
        verb->add_option("--order", order,
                         "Inks that come first, in this order: Black,Cyan; the others follow as "
                         "usual")
            ->type_name("LIST");
        AddInputOptions(*verb, input, RangeWords::ReadingAlone);
        AddOutputOptions(*verb, output);
        AddCommonOptions(*verb, common);
        verb->footer(std::string(joinHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        CatchInterrupts();
        const auto start = std::chrono::steady_clock::now();
        std::vector<PlateArgument> plates;
        for (const std::string& argument : arguments)
            plates.push_back(ReadPlateArgument(argument));
        RefusePlateAsOutput(plates);
        std::vector<OpenGroup> groups;
        for (const PlateGroup& group : GroupPlates(plates, order))
            groups.emplace_back(group, Spool{output.path, input.spoolLimit});
        const Total total = PlanAll(groups);
        if (common.dryRun) {
            TiffOutput::Check(output);
            return ExitCode::Done;
        }
        TiffOutput out(output, total.bytes, total.pages);
        JoinAll(groups, out, total);
        if (common.explain && !common.json)
            PrintSpeed(output.path, total.rows, std::chrono::steady_clock::now() - start);
        StopIfInterrupted(output.path);
        for (OpenGroup& group : groups)
            group.Close();
        out.Commit();
        for (const OpenGroup& group : groups) {
            for (const TiffFile& file : group.Files()) {
                for (const std::string& warning : file.Warnings())
                    PrintWarning(file.Path(), warning);
            }
        }
        return ExitCode::Done;
    }

private:
    // A command line whose first word was forgotten would end one of the plates.
    void RefusePlateAsOutput(const std::vector<PlateArgument>& plates) const
    {
        const auto name = ReadPlateName(output.path);
        if (name && std::any_of(plates.begin(), plates.end(), [&](const PlateArgument& plate) {
                return plate.base == name->base;
            }))
            throw Failure(ExitCode::Usage, output.path,
                          "is named like a plate of ink " + Quoted(name->ink) +
                              "; the new file comes first: pelkraft join OUT.tif PLATE...");
    }

    // Without its first word the command line would end one of the plates.
    void RefusePlateAsOutput() const
    {
        if (const auto plate = ReadPlateName(output.path); plate && AreProcessInks({plate->ink}))
            throw Failure(ExitCode::Usage, output.path,
                          "is named like a plate of ink " + Quoted(plate->ink) +
                              "; the new file comes first: pelkraft join OUT.tif PLATE...");
    }

    // Refuses before the first row of the first page what is wrong with the last.
    Total PlanAll(const std::vector<OpenGroup>& groups) const
    {
        Total total;
        Json pages = Json::array();
        PageGroups plans;
        std::vector<std::string> warnings;
        for (const OpenGroup& group : groups) {
            group.VisitPages(input.pages, [&](int) {
                const JoinPlan plan = PlanPage(group);
                total.rows += plan.to.height;
                ++total.pages;
                // Samples that don't compress may grow by a half.
                total.bytes += static_cast<std::uint64_t>(plan.to.RowBytes()) * plan.to.height / 2 *
                               (plan.to.compression == COMPRESSION_NONE ? 2 : 3);
                for (const std::string& warning : plan.tags.warnings) {
                    if (std::find(warnings.begin(), warnings.end(), warning) == warnings.end())
                        warnings.push_back(warning);
                }
                Explain(group, plan, pages, plans);
            });
        }
        for (const std::string& warning : warnings)
            PrintWarning(groups[0].Plates()[0].path, warning);
        PrintBeside(output.path, common.json
                                     ? JsonText({{"schema", 1}, {"pages", std::move(pages)}})
                                     : PlanText(plans));
        return total;
    }

    JoinPlan PlanPage(const OpenGroup& group) const
    {
        return PlanJoin(group.Plates(), group.Files(), input, output);
    }

    void Explain(const OpenGroup& group, const JoinPlan& plan, Json& pages, PageGroups& plans) const
    {
        if (!common.explain)
            return;
        std::string text = ": " + std::to_string(plan.to.width) + " x " +
                           std::to_string(plan.to.height) + " pixels, " +
                           plan.rows.Request().to.Words() + ", " +
                           CompressionName(plan.to.compression) + '\n';
        Json inks = Json::array();
        for (std::size_t plate = 0; plate < plan.plates.size(); ++plate) {
            text += PlateWords(group.Plates()[plate], plan.plates[plate], plate);
            inks.push_back(PlateJson(group.Plates()[plate], plan.plates[plate]));
        }
        plans.Add(static_cast<int>(pages.size() + 1), text);
        pages.push_back({{"page", pages.size() + 1},
                         {"width", plan.to.width},
                         {"height", plan.to.height},
                         {"bits", plan.to.bits},
                         {"compression", CompressionName(plan.to.compression)},
                         {"plates", std::move(inks)}});
    }

    void JoinAll(const std::vector<OpenGroup>& groups, TiffOutput& out, const Total& total) const
    {
        Progress progress("join " + OutputName(output.path), total.rows, total.pages);
        for (const OpenGroup& group : groups) {
            group.VisitPages(input.pages, [&](int) {
                progress.StartPage();
                JoinPage(group.Files(), out.File(), PlanPage(group), common.threads, progress);
            });
        }
        out.Finish();
    }

    CLI::App* verb = nullptr;
    InputOptions input;
    OutputOptions output;
    CommonOptions common;
    std::vector<std::string> arguments;
    std::string order;
};

} // namespace

std::unique_ptr<ISubcommand> MakeJoinCommand()
{
    return std::make_unique<JoinCommand>();
}

} // namespace zvk::Pelkraft::Client
