#include "tools/pelkraft/convert_command.h"

#include "tools/pelkraft/explain.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/page_conversion.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/tiff_output.h"
#include "tools/pelkraft/warning_counts.h"

#include <CLI/CLI.hpp>

#include <chrono>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* convertHelp =
    "Samples of 1, 2, 8 and 16 bits, any number of channels, strips and tiles, every page of the\n"
    "file. The new file is in strips, keeps what its tags say of the picture, and appears whole\n"
    "or not at all. Pixels are repeated and mirrored within their rows: --repeat 2 makes a\n"
    "picture twice as wide and doubles its horizontal resolution. Rows and pixels are those that\n"
    "are stored; the tag Orientation is kept, whatever becomes of them.\n\n";

// The sum of all pages.
struct Total
{
    int pages = 0;
    std::uint64_t rows = 0;
    std::uint64_t bytes = 0;
};

// A tag that turns the page is about the pixels as they were.
void WarnOfTurn(const TiffFile& file, const ConvertOptions& options)
{
    if (options.mirror && options.flip)
        WarnOfOrientation(file, "--mirror and --flip turn the stored pixels and keep the tag");
    else if (options.mirror || options.flip)
        WarnOfOrientation(file, std::string(options.mirror ? "--mirror" : "--flip") +
                                    " turns the stored pixels and keeps the tag");
}

// Refuses before the first row of the first page what is wrong with the last.
Total PlanAll(const TiffFile& file, const ConvertOptions& options)
{
    Total total;
    WarningCounts warnings;
    Json pages = Json::array();
    PageGroups plans;
    PageGroups choices;
    VisitPages(file, options.input.pages, [&](int page) {
        const PagePlan plan = PlanPage(file, options);
        const auto rowBytes = static_cast<std::uint64_t>(plan.to.RowBytes());
        // Samples that don't compress may grow by a half.
        const bool plain = plan.to.compression == COMPRESSION_NONE;
        total.bytes += rowBytes * plan.to.height / 2 * (plain ? 2 : 3);
        ++total.pages;
        total.rows += plan.to.height;
        if (options.common.json)
            pages.push_back(ExplainPageJson(plan, options, page));
        else if (options.common.explain)
            plans.Add(page, ExplainPage(plan, options));
        if (NotesAreWanted())
            choices.Add(page, ChoiceOf(plan));
        for (const std::string& warning : plan.tags.warnings)
            warnings.Add(warning);
        WarnOfTurn(file, options);
    });
    if (TIFFIsBigTIFF(file.Get()) != 0 && !NeedsBigForm(total.bytes))
        for (int page = 0; page < total.pages; ++page)
            warnings.Add("the form for more than 4 GB is not kept: the new file is smaller");
    NotePages(options.input.path, choices);
    warnings.Print(options.input.path);
    if (options.common.json)
        PrintBeside(options.output.path, JsonText({{"schema", 1}, {"pages", std::move(pages)}}));
    else
        PrintBeside(options.output.path, PlanText(plans));
    return total;
}

// Writes all pages, and answers whether samples exceeded the levels that they were cut to.
bool ConvertAll(const TiffFile& file, const ConvertOptions& options, const Total& total,
                TiffOutput& output)
{
    bool cutSamples = false;
    Progress progress("convert " + OutputName(options.output.path), total.rows, total.pages);
    VisitPages(file, options.input.pages, [&](int) {
        const PagePlan plan = PlanPage(file, options);
        cutSamples = ConvertPage(file, output.File(), plan, options, progress) || cutSamples;
    });
    file.RequireSound();
    output.Finish();
    return cutSamples;
}

class ConvertCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("convert", "Convert the rows of a TIFF file");
        verb->add_option("IN.tif", options.input.path, "The file to read")->required();
        verb->add_option("OUT.tif", options.output.path, "The file to write")->required();
        AddFormatOptions();
        AddInputOptions(*verb, options.input);
        AddOutputOptions(*verb, options.output);
        AddWorkOptions();
        verb->footer(std::string(convertHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        TakeOptions();
        CatchInterrupts();
        TiffFile file = OpenInput(options.input, options.output.path);
        const auto start = std::chrono::steady_clock::now();
        const Total total = PlanAll(file, options);
        if (options.common.dryRun) {
            TiffOutput::Check(options.output);
            return ExitCode::Done;
        }
        TiffOutput output(options.output, total.bytes, total.pages);
        const bool cutSamples = ConvertAll(file, options, total, output);
        if (options.common.explain && !options.common.json)
            PrintSpeed(options.output.path, total.rows, std::chrono::steady_clock::now() - start);
        StopIfInterrupted(options.output.path);
        file.Close();
        output.Commit();
        for (const std::string& warning : file.Warnings()) {
            // Such tags are kept, or were named.
            if (warning.find("Unknown field with tag") == std::string::npos)
                PrintWarning(options.input.path, warning);
        }
        if (!cutSamples)
            return ExitCode::Done;
        PrintWarning(options.input.path,
                     "samples exceed the levels of the new depth, and only their "
                     "lowest bits were kept; --tones scale rounds them to levels");
        return ExitCode::Warnings;
    }

private:
    void AddFormatOptions()
    {
        verb->add_option("--layout", layout,
                         "Samples of a pixel side by side, or one plane per channel")
            ->check(CLI::IsMember({"interleaved", "planar"}));
        verb->add_option(
                "--bits", bits,
                "Bits per sample; 1 cuts tones at one half, and pelkraft simulate makes screens")
            ->check(CLI::IsMember({1, 2, 8, 16}));
        verb->add_option("--channels", options.channels,
                         "New channels, each by the number or name of an old one, or - for an "
                         "empty one: 2,1,0,3 or Cyan,Black")
            ->type_name("LIST");
        verb->add_option("--repeat", options.repeat, "Write each pixel of a row this many times")
            ->check(CLI::IsMember({1, 2, 4}));
        verb->add_flag("--mirror", options.mirror,
                       "Write each row from its last pixel to its first");
        verb->add_flag("--flip", options.flip, "Write the rows from the last to the first");
        verb->add_flag("--invert", options.invert,
                       "Turn each sample into the highest less the sample, and the tags with them");
        verb->add_option("--tones", tones,
                         "How samples below 8 bits are read: scale rounds tones to levels and "
                         "stretches levels to tones, the default where only one of the two files "
                         "has such samples; raw takes samples as numbers")
            ->check(CLI::IsMember({"scale", "raw"}));
    }

    void AddWorkOptions()
    {
        verb->add_flag("--portable", options.portable, "Take the portable road of the library");
        AddCommonOptions(*verb, options.common);
    }

    void TakeOptions()
    {
        RefuseOtherEnding(options.output.path, FileKind::Tiff);
        if (!layout.empty())
            options.separate = layout == "planar";
        if (bits != 0)
            options.bits = bits;
        if (!tones.empty())
            options.tones = tones == "raw" ? Tones::Raw : Tones::Scale;
    }

    ConvertOptions options;
    CLI::App* verb = nullptr;
    std::string layout;
    std::string tones;
    int bits = 0;
};

} // namespace

std::unique_ptr<ISubcommand> MakeConvertCommand()
{
    return std::make_unique<ConvertCommand>();
}

} // namespace zvk::Pelkraft::Client
