#include "tools/pelkraft/info_command.h"

#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/info_report.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/missing_data.h"
#include "tools/pelkraft/text_output.h"

#include <CLI/CLI.hpp>

#include <chrono>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* infoHelp =
    "Shows each page's size, samples, kind and colour profile, and of each channel its name, its\n"
    "polarity, and the samples of no and of full ink. Without --stats, and in a dry run, no "
    "sample\n"
    "is read, however large the file is. A file that can't be read doesn't keep the others from\n"
    "being shown.\n\n";

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
        const auto start = std::chrono::steady_clock::now();
        if (common.explain && !common.json)
            PrintText(Plan());
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
        else if (common.explain && statistics && !common.dryRun)
            PrintSpeed({}, rows, std::chrono::steady_clock::now() - start);
        return code;
    }

private:
    std::string Plan() const
    {
        if (!statistics)
            return "plan: the tags of each page, and no sample\n";
        return "plan: the tags of each page, and " +
               std::string(common.dryRun ? "no sample in a dry run"
                                         : "all samples, on " + std::to_string(common.threads) +
                                               (common.threads == 1 ? " thread" : " threads")) +
               '\n';
    }

    FileFacts ReadFacts(const std::string& path)
    {
        const TiffFile file = TiffFile::OpenForReading(path, {{}, input.spoolLimit});
        FileFacts facts;
        facts.path = path;
        facts.bytes = file.Size();
        facts.bigForm = TIFFIsBigTIFF(file.Get()) != 0;
        facts.bigEndian = TIFFIsBigEndian(file.Get()) != 0;
        bool truncated = false;
        VisitPages(file, input.pages, [&](int page) {
            facts.pages.push_back(ReadPageFacts(file, input, page));
            rows += facts.pages.back().picture.height;
            if (statistics && !common.dryRun)
                Count(file, facts.pages.back());
            else
                truncated = WarnOfMissingData(file) || truncated;
        });
        file.RequireSound();
        for (const std::string& warning : file.Warnings()) {
            // It is libtiff's word for the same.
            if (!truncated || warning.find("Bogus \"StripByteCounts\"") == std::string::npos)
                PrintWarning(path, warning);
        }
        return facts;
    }

    // Answers whether the page has lost data.
    static bool WarnOfMissingData(const TiffFile& file)
    {
        const std::string words = MissingDataWords(file);
        if (!words.empty())
            PrintWarning(file.Path(), words);
        return !words.empty();
    }

    void Count(const TiffFile& file, PageFacts& facts) const
    {
        std::vector<InkCodes> codes = facts.codes;
        codes.resize(facts.channels.size(), {0, 1});
        facts.statistics = CountSamples(file, ReadPicture(file), codes, common.threads);
    }

    CLI::App* verb = nullptr;
    InputOptions input;
    std::vector<std::string> paths;
    CommonOptions common;
    bool statistics = false;
    std::uint64_t rows = 0;
};

} // namespace

std::unique_ptr<ISubcommand> MakeInfoCommand()
{
    return std::make_unique<InfoCommand>();
}

} // namespace zvk::Pelkraft::Client
