#include "tools/pelkraft/mask_command.h"

#include "dither/mask_generator.h"
#include "pelkraft/dither.h"
#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/text_output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::size_t rankCount = 65536;

constexpr const char* maskHelp =
    "The mask decides in which pixels a tone between two steps takes the upper one: 256 x 256\n"
    "ranks, each from 0 to 65535 once. --verify makes them anew, which takes some seconds, and\n"
    "exits with 1 if they differ.\n\n";

class MaskCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("mask", "Verify or export the mask of the dither");
        CLI::Option* const verifies =
            verb->add_flag("--verify", verify, "Make the mask anew and compare it");
        verb->add_option("--export", form,
                         "Write the ranks row by row; raw16 is 16 bits each, the low byte first")
            ->check(CLI::IsMember({"raw16"}))
            ->excludes(verifies);
        verb->add_option("FILE", output, "The file to write; - is the standard output stream")
            ->capture_default_str();
        verb->add_flag("--no-clobber", rules.noClobber, "Refuse to overwrite a file");
        AddCommonOptions(*verb, common, JsonUse::Result);
        verb->footer(std::string(maskHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        if (!verify && form.empty())
            throw Failure(ExitCode::Usage, {}, "mask wants --verify or --export raw16");
        if (verify && output != "-")
            throw Failure(ExitCode::Usage, {},
                          "mask --verify takes no file: it compares the library's own mask");
        CatchInterrupts();
        const std::uint16_t* const ranks = plk_dither_mask();
        if (ranks == nullptr)
            throw Failure(ExitCode::Unsupported, {}, "the library was built without a mask");
        return verify ? Verify(ranks) : Export(ranks);
    }

private:
    ExitCode Verify(const std::uint16_t* ranks) const
    {
        if (common.explain)
            PrintText("makes 256 x 256 ranks anew by void and cluster, and compares them\n");
        if (common.dryRun)
            return ExitCode::Done;
        const std::vector<std::uint16_t> anew = MakeMask();
        StopIfInterrupted({});
        const auto place = std::mismatch(anew.begin(), anew.end(), ranks).first - anew.begin();
        const bool equal = place == rankCount;
        if (common.json)
            PrintText(std::string("{\"schema\": 1, \"ranks\": 65536, \"equal\": ") +
                      (equal ? "true}\n" : "false}\n"));
        else if (equal)
            PrintText("the mask is the one that the generator makes\n");
        else
            PrintText("the mask differs from the one that the generator makes, first at column " +
                      std::to_string(place % 256) + " of row " + std::to_string(place / 256) +
                      ": " + std::to_string(ranks[place]) + " instead of " +
                      std::to_string(anew[static_cast<std::size_t>(place)]) + '\n');
        return equal ? ExitCode::Done : ExitCode::Warnings;
    }

    ExitCode Export(const std::uint16_t* ranks) const
    {
        std::string bytes;
        for (std::size_t place = 0; place != rankCount; ++place) {
            bytes.push_back(static_cast<char>(ranks[place] & 0xFF));
            bytes.push_back(static_cast<char>(ranks[place] >> 8));
        }
        const bool streams = output == "-";
        if (streams)
            RefuseTerminal("the mask");
        if (common.explain && !streams)
            PrintText("writes 256 x 256 ranks of 16 bits, 131072 bytes\n");
        if (common.dryRun) {
            if (!streams)
                AtomicOutput::Check(output, rules);
        } else if (streams) {
            PrintText(bytes);
        } else {
            WriteWholeFile(output, bytes, rules);
        }
        return ExitCode::Done;
    }

    CLI::App* verb = nullptr;
    bool verify = false;
    std::string form;
    std::string output = "-";
    OutputRules rules;
    CommonOptions common;
};

} // namespace

std::unique_ptr<ISubcommand> MakeMaskCommand()
{
    return std::make_unique<MaskCommand>();
}

} // namespace zvk::Pelkraft::Client
