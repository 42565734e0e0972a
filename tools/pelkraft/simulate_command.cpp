#include "tools/pelkraft/simulate_command.h"

#include "tools/pelkraft/atomic_output.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/lint_first.h"
#include "tools/pelkraft/option_values.h"
#include "tools/pelkraft/page_inks.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/pattern_engines.h"
#include "tools/pelkraft/simulation.h"
#include "tools/pelkraft/simulation_explain.h"
#include "tools/pelkraft/system_calls.h"
#include "tools/pelkraft/text_output.h"
#include "tools/pelkraft/tiff_output.h"
#include "tools/pelkraft/tone_option.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <new>
#include <optional>
#include <set>
#include <system_error>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* simulateHelp =
    "An in-colour takes the channel of its own name, in any case of letters; in-colours without\n"
    "one take inks that have no name, in their order, with a warning that tells which. A page of\n"
    "RGB is refused, and so is one whose names leave nothing for an in-colour; alpha channels are\n"
    "left out, while extra samples of no told kind are inks. Samples are amounts of ink:\n"
    "the page's photometric kind, its dot range and the options say which one is none and which\n"
    "one is all. Each picture row is one row of the pattern, and each page starts at its first.\n"
    "The new file has one channel for each out-ink. The reference engine goes on from row to row\n"
    "and always runs on one thread.\n\n";

std::string AdviseInkOption(const std::string& ink)
{
    return "--ink \"" + ink + "=#RRGGBB\"";
}

Levels LevelsOf(const std::string& name)
{
    return name == "raw"        ? Levels::Raw
           : name == "quantize" ? Levels::Quantize
           : name == "dither"   ? Levels::Dither
                                : Levels::Automatic;
}

// Reads "X,Y".
PageOrigin ReadOrigin(const std::string& words)
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    const char* const end = words.data() + words.size();
    const auto [comma, error] = std::from_chars(words.data(), end, x);
    if (error == std::errc() && comma != end && *comma == ',') {
        const auto [last, secondError] = std::from_chars(comma + 1, end, y);
        if (secondError == std::errc() && last == end)
            return {x, y};
    }
    throw Failure(ExitCode::Usage, {},
                  "--origin " + words + " is no place; supported are two whole numbers: 120,-7");
}

// The sum of all pages.
struct Total
{
    int pages = 0;
    std::uint64_t rows = 0;
    std::uint64_t bytes = 0;
    bool warned = false;
};

class SimulateCommand final : public ISubcommand
{
public:
    void Register(CLI::App& program) override
    {
        verb = program.add_subcommand("simulate", "Apply a dot pattern to a TIFF file");
        verb->add_option("PATTERN", options.pattern, "The pattern text")->required();
        verb->add_option("IN.tif", options.input.path, "The file to read")->required();
        verb->add_option("OUT.tif", options.output.path, "The file to write")->required();
        verb->add_option("--engine", engine, "Engine of the library; auto is sse or x86")
            ->check(CLI::IsMember({"auto", "reference", "x86", "sse"}))
            ->capture_default_str();
        verb->add_option("--levels", levels,
                         "dither mixes the two steps about a tone, by a mask; quantize divides "
                         "tones evenly over the steps; raw takes samples as steps. Without it, "
                         "dither where there are more tones than steps, else quantize")
            ->check(CLI::IsMember({"raw", "quantize", "dither"}));
        AddToneOptions();
        verb->add_option("--preview", options.preview,
                         "Also write a PNG that shows the first page as a person sees it")
            ->type_name("FILE");
        verb->add_option("--ink", inks, "Colour of an out-ink in the preview; may be repeated")
            ->type_name("NAME=#RRGGBB");
        AddInputOptions(*verb, options.input, RangeWords::ReadingAlone);
        AddOutputOptions(*verb, options.output);
        AddCommonOptions(*verb, options.common);
        verb->footer(std::string(simulateHelp) + exitCodeHelp);
    }

    bool Chosen() const override { return verb->parsed(); }

    ExitCode Run() override
    {
        TakeOptions();
        CatchInterrupts();
        const auto start = std::chrono::steady_clock::now();
        const PatternText text = PatternText::Load(
            options.pattern, "the order is pelkraft simulate PATTERN IN.tif OUT.tif");
        const PatternReport report(text);
        const ShownFindings findings(report, options.engine);
        const LoadedPattern pattern(text, options.engine);
        findings.StopAtErrors();
        RefuseUnknownInks(pattern);
        if (!inks.empty() && options.preview.empty())
            PrintWarning({}, "--ink is about the preview, and there is none without --preview");
        const StepChoice steps = ChooseSteps(pattern, options.levels, options.tone);
        TiffFile file = OpenInput(options.input, options.output.path);
        Total total = PlanAll(file, pattern, steps);
        total.warned = total.warned || findings.HasWarnings();
        if (options.common.dryRun)
            return CheckOutputs(total);
        // Samples that don't compress may grow by a half.
        TiffOutput output(options.output, total.bytes / 2 * 3, total.pages);
        std::optional<AtomicOutput> previewOutput;
        if (!options.preview.empty())
            previewOutput.emplace(options.preview, PreviewRules());
        const bool sawHighStep = SimulateAll(file, pattern, steps, total, output,
                                             previewOutput ? &*previewOutput : nullptr);
        if (options.common.explain && !options.common.json)
            PrintSpeed(options.output.path, total.rows, std::chrono::steady_clock::now() - start);
        StopIfInterrupted(options.output.path);
        file.Close();
        if (previewOutput)
            previewOutput->Commit();
        output.Commit();
        for (const std::string& warning : file.Warnings())
            PrintWarning(options.input.path, warning);
        if (sawHighStep)
            PrintWarning(options.input.path, highStepWords);
        return sawHighStep || total.warned ? ExitCode::Warnings : ExitCode::Done;
    }

private:
    void AddToneOptions()
    {
        verb->add_option("--tone", options.tone,
                         "Ink of each step for the dither: coverage, by the shares and values of "
                         "the pattern; equal, in equal distances; or a CSV file with lines of an "
                         "in-colour, a step and its ink")
            ->type_name("TONE")
            ->capture_default_str();
        verb->add_option("--bits", options.bits,
                         "Bits per sample of the new file; 2 takes inks of values up to 3")
            ->check(CLI::IsMember({2, 8}))
            ->capture_default_str();
        verb->add_option("--origin", origin,
                         "The place of a page's first pixel, for the dither and, with Y, for the "
                         "pattern's rows")
            ->type_name("X,Y")
            ->default_str("0,0");
        verb->add_flag("--pages", options.runsOn,
                       "Let the rows of the pattern and of the dither run on from page to page, "
                       "instead of beginning anew on each");
    }

    void RefuseUselessTone() const
    {
        if (verb->count("--tone") != 0 &&
            (options.levels == Levels::Quantize || options.levels == Levels::Raw))
            throw Failure(ExitCode::Usage, {},
                          "--tone is about the dither, which --levels " + levels +
                              " does without; leave one of them out");
    }

    // Its rows can't begin elsewhere than where the last one ended.
    void RefuseRunningOn() const
    {
        if (options.engine == DotWeavePattern::Reference &&
            (options.runsOn || options.origin.y != 0))
            throw Failure(ExitCode::Usage, {},
                          "the reference engine begins each page at its first row; supported with "
                          "--pages, and an --origin below the first row, are auto, x86 and sse");
    }

    OutputRules PreviewRules() const { return {FileKind::Png, options.output.noClobber}; }

    void TakeOptions()
    {
        RefuseOtherEnding(options.output.path, FileKind::Tiff);
        RefuseOtherEnding(options.preview, FileKind::Png);
        options.engine = EngineOf(engine);
        options.levels = LevelsOf(levels);
        if (!origin.empty())
            options.origin = ReadOrigin(origin);
        RefuseUselessTone();
        RefuseRunningOn();
        for (const std::string& ink : inks)
            AddInkColour(ink);
        if (!options.preview.empty() &&
            Canonical(options.preview) == Canonical(options.output.path))
            throw Failure(ExitCode::Usage, options.preview,
                          "can't be both OUT.tif and the preview");
    }

    ExitCode CheckOutputs(const Total& total) const
    {
        TiffOutput::Check(options.output);
        if (!options.preview.empty())
            AtomicOutput::Check(options.preview, PreviewRules());
        return total.warned ? ExitCode::Warnings : ExitCode::Done;
    }

    // Empty where the path can't be followed; opening it will tell why.
    static std::filesystem::path Canonical(const std::string& path)
    {
        std::error_code error;
        auto canonical = std::filesystem::weakly_canonical(PathOf(path), error);
        if (error == std::errc::not_enough_memory)
            throw std::bad_alloc();
        return canonical;
    }

    void AddInkColour(const std::string& ink)
    {
        const std::size_t equals = ink.rfind("=#");
        const auto colour =
            equals == std::string::npos ? std::nullopt : ReadColour(ink.substr(equals + 1));
        const std::string name = PlainInkName(ink.substr(0, equals));
        if (name.empty() || !colour)
            throw Failure(ExitCode::Usage, {},
                          "--ink " + ink + ": supported is NAME=#RRGGBB, such as Cyan=#009EE0");
        InkLook& look = options.inks.emplace(name, LookOfInk(name, {})).first->second;
        look.colour = *colour;
    }

    void RefuseUnknownInks(const LoadedPattern& pattern) const
    {
        for (const std::string& given : inks) {
            const std::string name = given.substr(0, given.rfind("=#"));
            const bool known = std::any_of(pattern.outInks.begin(), pattern.outInks.end(),
                                           [plain = PlainInkName(name)](const std::string& ink) {
                                               return PlainInkName(ink) == plain;
                                           });
            if (!known)
                throw Failure(ExitCode::Usage, options.pattern,
                              "has no out-ink \"" + name + "\" for --ink; supported are " +
                                  Joined(pattern.outInks, ", "));
        }
    }

    // Refuses before the first row of the first page what is wrong with the last.
    Total PlanAll(const TiffFile& file, const LoadedPattern& pattern, const StepChoice& steps) const
    {
        Total total;
        std::set<std::size_t> flat;
        PageGroups plans;
        PageGroups choices;
        Json pages = Json::array();
        VisitPages(file, options.input.pages, [&](int page) {
            const SimulationPlan plan = PlanSimulation(file, options, pattern, steps);
            ++total.pages;
            total.rows += plan.to.height;
            total.bytes += static_cast<std::uint64_t>(plan.to.width) * plan.to.height *
                           static_cast<std::uint64_t>(plan.to.channels);
            if (options.common.json)
                pages.push_back(ExplainSimulationJson(plan, pattern, page));
            else if (options.common.explain)
                plans.Add(page, ExplainSimulation(plan, pattern));
            WarnOfGuesses(plan, pattern);
            WarnOfOrientation(file, "a press doesn't look at the tag, and the dots are those of "
                                    "the stored pixels");
            if (NotesAreWanted())
                choices.Add(page, ChoicesOf(plan, pattern));
            total.warned = WarnOfUnused(plan) || total.warned;
            for (std::size_t i = 0; i < steps.topSteps.size(); ++i)
                if (steps.IsFlat(i, plan.steps.toneCount))
                    flat.insert(i);
        });
        PrintBeside(options.output.path,
                    options.common.json ? JsonText({{"schema", 1}, {"pages", std::move(pages)}})
                                        : PlanText(plans));
        NotePages(options.input.path, choices);
        for (const std::size_t inColour : flat)
            PrintWarning(options.pattern, FlatInksWords(pattern, steps, inColour, toneAdvice));
        total.warned = total.warned || !flat.empty();
        return total;
    }

    // Neither loses ink.
    void WarnOfGuesses(const SimulationPlan& plan, const LoadedPattern& pattern) const
    {
        const std::string order = OrderWords(pattern.inColours, plan.channels, plan.choice);
        if (!order.empty())
            PrintWarning(options.input.path, order);
        for (const int channel : plan.choice.alphas)
            PrintWarning(options.input.path, "channel " + ChannelWords(plan.channels, channel) +
                                                 " is alpha, which is no ink, and is left out");
    }

    bool WarnOfUnused(const SimulationPlan& plan) const
    {
        for (const int channel : plan.choice.unused)
            PrintWarning(options.input.path, UnusedChannelWords(plan.channels, channel));
        return !plan.choice.unused.empty();
    }

    // Answers whether raw samples were above the top steps. previewOutput may be null.
    bool SimulateAll(const TiffFile& file, const LoadedPattern& pattern, const StepChoice& steps,
                     const Total& total, TiffOutput& output, AtomicOutput* previewOutput) const
    {
        bool sawHighStep = false;
        bool first = true;
        SimulationRun run = {options, pattern};
        Progress progress("simulate " + OutputName(options.output.path), total.rows, total.pages);
        VisitPages(file, options.input.pages, [&](int) {
            const SimulationPlan plan = PlanSimulation(file, options, pattern, steps);
            std::string shown;
            std::optional<PreviewPng> preview;
            if (first && previewOutput != nullptr)
                OpenPreview(file, plan, pattern, shown, preview);
            first = false;
            sawHighStep = SimulatePage(file, output.File(), plan, run,
                                       preview ? &*preview : nullptr, progress) ||
                          sawHighStep;
            if (preview) {
                preview->Finish();
                previewOutput->Write(shown);
            }
        });
        file.RequireSound();
        output.Finish();
        return sawHighStep;
    }

    // The picture is kept: it is written when its page is there.
    void OpenPreview(const TiffFile& file, const SimulationPlan& plan, const LoadedPattern& pattern,
                     std::string& shown, std::optional<PreviewPng>& preview) const
    {
        std::vector<PageInk> pageInks;
        for (const std::string& ink : pattern.outInks)
            pageInks.push_back({ink, pageInks.size()});
        std::set<std::string> told;
        const LayerCodes codes = {8, pageInks.size(), 0, pattern.fullInk, 0};
        preview.emplace(options.preview,
                        FitFrame(plan.to.width, plan.to.height, ReadResolution(file).PixelHeight()),
                        InkLayers(codes, LayersOf(pageInks, options.inks,
                                                  {options.preview, AdviseInkOption, told})),
                        ShownPage{ReadResolution(file), ReadOrientation(file)},
                        [&shown](const void* bytes, std::size_t size) {
                            shown.append(static_cast<const char*>(bytes), size);
                            return 0;
                        });
    }

    SimulateOptions options;
    OutputRules rules = {FileKind::Tiff};
    CLI::App* verb = nullptr;
    std::string engine = "auto";
    std::string levels;
    std::string origin;
    std::vector<std::string> inks;
};

} // namespace

std::unique_ptr<ISubcommand> MakeSimulateCommand()
{
    return std::make_unique<SimulateCommand>();
}

} // namespace zvk::Pelkraft::Client
