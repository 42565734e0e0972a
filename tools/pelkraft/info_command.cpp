#include "tools/pelkraft/info_command.h"

#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/info_report.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/text_output.h"

#include <CLI/CLI.hpp>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* infoHelp =
    "Shows each page's size, samples, kind and colour profile, and of each channel its name, its\n"
    "polarity, and the samples of no and of full ink. Without --stats no sample is read, however\n"
    "large the file is. A file that can't be read doesn't keep the others from being shown.\n\n";

class InfoCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("info", "Show what TIFF files hold");
        verb->add_option("FILE", paths, "The files to read")->required();
        AddInputOptions(*verb, input, RangeWords::ReadingAlone);
        verb->add_flag("--stats", statistics,
                       "Count lowest and highest sample, mean, and share of pixels with ink");
        AddCommonOptions(*verb, common, JsonUse::Result);
        verb->footer(std::string(infoHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        CatchInterrupts();
        ExitCode code = ExitCode::Done;
        Json files = Json::array();
        for (const std::string& path : paths) {
            try {
                const FileFacts facts = ReadFacts(path);
                if (common.json)
                    files.push_back(InfoJson(facts));
                else
                    PrintText(InfoWords(facts));
            } catch (const Failure& failure) {
                if (failure.Code() == ExitCode::Interrupted || failure.Code() == ExitCode::Usage)
                    throw;
                PrintError(failure.File(), failure.what());
                files.push_back({{"file", path}, {"error", failure.what()}});
                code = code == ExitCode::Done ? failure.Code() : code;
            }
        }
        if (common.json)
            PrintText(JsonText({{"schema", 1}, {"files", std::move(files)}}));
        return code;
    }

private:
    FileFacts ReadFacts(const std::string& path)
    {
        const TiffFile file = TiffFile::OpenForReading(path, {{}, input.spoolLimit});
        FileFacts facts;
        facts.path = path;
        facts.bytes = file.Size();
        facts.bigForm = TIFFIsBigTIFF(file.Get()) != 0;
        facts.bigEndian = TIFFIsBigEndian(file.Get()) != 0;
        VisitPages(file, input.pages, [&](int page) {
            facts.pages.push_back(ReadPageFacts(file, input, page));
            if (statistics)
                Count(file, facts.pages.back());
        });
        file.RequireSound();
        for (const std::string& warning : file.Warnings())
            PrintWarning(path, warning);
        return facts;
    }

    void Count(const TiffFile& file, PageFacts& facts) const
    {
        facts.statistics = CountSamples(file, ReadPicture(file),
                                        facts.codes.value_or(InkCodes{0, 1}), common.threads);
    }

    CLI::App* verb = nullptr;
    InputOptions input;
    std::vector<std::string> paths;
    CommonOptions common;
    bool statistics = false;
};

} // namespace

std::unique_ptr<ISubcommand> MakeInfoCommand()
{
    return std::make_unique<InfoCommand>();
}

} // namespace zvk::Pelkraft::Client
