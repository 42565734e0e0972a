#include "tools/pelkraft/check_command.h"

#include "tools/pelkraft/check_report.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/option_values.h"
#include "tools/pelkraft/text_output.h"

#include <CLI/CLI.hpp>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* checkHelp =
    "Compares the tags of each page with each other and with the file: names and number of inks,\n"
    "InkSet, DotRange, ExtraSamples, polarity, colour profile, resolution, and whether all of the\n"
    "file is there. Each finding names file, page and tag, what was found, what was expected, and\n"
    "what to do. No sample is read. The exit code is 1 with findings, and 3 where a file is no\n"
    "TIFF file or has lost its first directory; the others are checked all the same.\n\n";

class CheckCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("check", "Look for what is wrong with TIFF files");
        verb->add_option("FILE", paths, "The files to check");
        verb->add_option("--rules", rules,
                         "Rules to check by, their names between commas; list shows them")
            ->type_name("LIST")
            ->default_str("all");
        verb->add_option("--format", format, "Form of the findings")
            ->check(CLI::IsMember({"text", "json", "sarif"}))
            ->capture_default_str();
        AddCommonOptions(*verb, common, JsonUse::Result);
        verb->footer(std::string(checkHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        CatchInterrupts();
        if (rules == "list") {
            PrintText(RuleWords());
            return ExitCode::Done;
        }
        if (paths.empty())
            throw Failure(ExitCode::Usage, {}, "FILE is required, but for --rules list");
        const std::vector<std::size_t> chosen = ChooseRules(rules);
        Explain(chosen);
        ExitCode code = ExitCode::Done;
        std::vector<CheckedFile> files;
        for (const std::string& path : paths) {
            StopIfInterrupted(path);
            files.push_back(Check(path, chosen, common.dryRun, code));
        }
        Print(files, code);
        return code;
    }

private:
    void Explain(const std::vector<std::size_t>& chosen) const
    {
        if (!common.explain || common.json || format != "text")
            return;
        std::vector<std::string> names;
        names.reserve(chosen.size());
        for (const std::size_t rule : chosen)
            names.emplace_back(CheckRules()[rule].name);
        PrintText("all pages by the rules " + Enumerated(names) + '\n');
    }

    // A dry run only sees whether the files are there. A file that can't be read weighs more than
    // findings.
    static CheckedFile Check(const std::string& path, const std::vector<std::size_t>& chosen,
                             bool dry, ExitCode& code)
    {
        CheckedFile file;
        file.path = path;
        try {
            const RawTiff tiff(path, {});
            if (!dry)
                file.findings = CheckFile(tiff, chosen);
            if (!file.findings.empty() && code == ExitCode::Done)
                code = ExitCode::Warnings;
        } catch (const Failure& failure) {
            if (failure.Code() == ExitCode::Interrupted)
                throw;
            PrintError(failure.File(), failure.what());
            file.failure = failure.what();
            if (code == ExitCode::Done || code == ExitCode::Warnings)
                code = failure.Code();
        }
        return file;
    }

    void Print(const std::vector<CheckedFile>& files, ExitCode code) const
    {
        if (common.json || format == "json") {
            PrintText(CheckJson(files));
            return;
        }
        if (format == "sarif") {
            PrintText(CheckSarif(files, code));
            return;
        }
        std::string text;
        for (const CheckedFile& file : files)
            text += CheckWords(file);
        PrintText(text);
    }

    CLI::App* verb = nullptr;
    CommonOptions common;
    std::vector<std::string> paths;
    std::string rules = "all";
    std::string format = "text";
};

} // namespace

std::unique_ptr<ISubcommand> MakeCheckCommand()
{
    return std::make_unique<CheckCommand>();
}

} // namespace zvk::Pelkraft::Client
