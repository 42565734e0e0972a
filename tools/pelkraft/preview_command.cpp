#include "tools/pelkraft/preview_command.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/preview_pages.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* previewHelp =
    "Each ink takes its light away from white paper, in linear light: what a full layer of it\n"
    "lets through is its colour, and an opaque one hides what lies below. The usual inks have\n"
    "looks of their own; an ink file gives others, a line for each ink: its name, in double\n"
    "quotes if it holds blanks, a colour #RRGGBB, an opacity from 0 to 1 and, if it is not 1, a\n"
    "strength from 0 to 1. Of several pages the first one gets OUT.png, and page 2 OUT-2.png.\n"
    "A picture has at most 1600 pixels on a side, unless it is a crop. It is turned by the tag\n"
    "Orientation; a crop counts the pixels as they are stored, as coverage does.\n\n";

class PreviewCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("preview", "Show the inks of a TIFF file as a PNG");
        verb->add_option("IN.tif", options.input.path, "The file to read")->required();
        verb->add_option("OUT.png", options.output, "The file to write")->required();
        verb->add_option("--inks", inkFile, "Looks of inks, as a file tells them")
            ->type_name("FILE");
        verb->add_option_function<std::string>(
                "--print-order",
                [this](const std::string& list) { options.printOrder = SplitNames(list); },
                "Inks in the order of their printing; others follow")
            ->type_name("LIST");
        verb->add_option("--gain", gainPercent,
                         "Percent of the paper that half a tone gains in print")
            ->type_name("PCT")
            ->check(CLI::Range(0.0, highestGain))
            ->capture_default_str();
        verb->add_option("--crop", crop, "The part to show, pixel by pixel")->type_name("X,Y,W,H");
        AddInputOptions(*verb, options.input, RangeWords::ReadingAlone);
        verb->add_flag("--no-clobber", options.rules.noClobber, "Refuse to overwrite a file");
        AddCommonOptions(*verb, options.common);
        verb->footer(std::string(previewHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        RefuseOtherEnding(options.output, options.rules.kind);
        options.gain = gainPercent / 100;
        if (crop)
            options.crop = ReadCrop(*crop);
        if (inkFile)
            options.inks = LoadInkFile(*inkFile);
        CatchInterrupts();
        PreviewPages(options);
        return ExitCode::Done;
    }

private:
    // Half a tone can't gain more than the paper that is left.
    static constexpr double highestGain = 50;

    static std::vector<std::string> SplitNames(std::string_view list)
    {
        std::vector<std::string> names;
        for (;;) {
            const std::size_t comma = list.find(',');
            names.emplace_back(list.substr(0, comma));
            if (comma == std::string_view::npos)
                return names;
            list.remove_prefix(comma + 1);
        }
    }

    CLI::App* verb = nullptr;
    PreviewOptions options;
    std::optional<std::string> inkFile;
    std::optional<std::string> crop;
    double gainPercent = 0;
};

} // namespace

std::unique_ptr<ISubcommand> MakePreviewCommand()
{
    return std::make_unique<PreviewCommand>();
}

} // namespace zvk::Pelkraft::Client
