#include "tools/pelkraft/simulation.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/ink_values.h"
#include "tools/pelkraft/page_inks.h"
#include "tools/pelkraft/page_rows.h"
#include "tools/pelkraft/pattern_outline.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/tag_writer.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t largestRow = std::numeric_limits<std::int32_t>::max();

// Each thread has one of its own.
struct Worker
{
    Worker(const SimulationPlan& plan, const LoadedPattern& loaded, const StepLevels& levels,
           const DitherPlan* dither)
        : steps(plan.steps, levels, dither), pattern(loaded.Make()),
          inks(plan.packing ? static_cast<std::size_t>(plan.packing->Request().from.Bytes()) : 0)
    {
        if (plan.packing)
            packer.emplace(*plan.packing);
    }

    // Passes by the rows of other threads without a pixel. The pattern's rows are the same again
    // after as many as its jump table has entries.
    void GoTo(std::int64_t row, unsigned char* anyByte)
    {
        constexpr std::int64_t entries = 65536;
        for (; (row - nextRow) % entries != 0; ++nextRow)
            pattern->ApplyPattern(anyByte, anyByte, 0);
        nextRow = row + 1;
    }

    StepMaker steps;
    std::unique_ptr<DotWeavePattern> pattern;
    // Bytes of the new row before they are packed.
    RowBuffer inks;
    std::optional<RowPipeline> packer;
    std::int64_t nextRow = 0;
};

// Takes rows of the file to steps, and these to rows of the new page.
class RowSimulation
{
public:
    RowSimulation(const SimulationPlan& newPlan, SimulationRun& run, int threads)
        : plan(newPlan), origin(run.options.origin),
          levels(plan.steps.ways, plan.steps.steps.topSteps)
    {
        origin.y += run.rowsBefore;
        const DitherPlan* const dither = run.dithers.For(plan.steps);
        for (int worker = 0; worker < threads; ++worker)
            workers.emplace_back(plan, run.pattern, levels, dither);
    }

    void Simulate(int index, std::int64_t row, const unsigned char* oldRow, unsigned char* newRow)
    {
        Worker& worker = workers[static_cast<std::size_t>(index)];
        unsigned char* const steps = worker.steps.Make(oldRow, origin.x, origin.y + row);
        worker.GoTo(origin.y + row, newRow);
        unsigned char* const inks = worker.packer ? worker.inks.Data() : newRow;
        worker.pattern->ApplyPattern(steps, inks, plan.from.width);
        if (worker.packer)
            worker.packer->Run(inks, newRow);
    }

    bool SawHighStep() const
    {
        return std::any_of(workers.begin(), workers.end(),
                           [](const Worker& worker) { return worker.steps.SawHighStep(); });
    }

    bool CutInks() const
    {
        return std::any_of(workers.begin(), workers.end(), [](const Worker& worker) {
            return worker.packer && worker.packer->CutSamples();
        });
    }

private:
    const SimulationPlan& plan;
    PageOrigin origin;
    StepLevels levels;
    std::vector<Worker> workers;
};

TiffPicture PlanPicture(const TiffPicture& from, int outInks, const SimulateOptions& options)
{
    TiffPicture to = from;
    to.separate = false;
    to.bits = options.bits;
    to.channels = outInks;
    to.photometric = PHOTOMETRIC_SEPARATED;
    const std::int64_t bytes = to.RowBytes();
    if (bytes > largestRow)
        throw Failure(ExitCode::Unsupported, options.input.path,
                      "would need rows of " + std::to_string(bytes) +
                          " bytes; supported are up to 2147483647");
    PlanStrips(from, to, options.output);
    return to;
}

void RefuseRawWords(const TiffPicture& from, Levels levels, const std::string& path)
{
    if (levels == Levels::Raw && from.bits == 16)
        throw Failure(ExitCode::Unsupported, path,
                      "has samples of 16 bits; --levels raw supports 1, 2 and 8");
}

void RefuseWideInks(const LoadedPattern& pattern, int bits)
{
    const int highest = (1 << bits) - 1;
    const auto refuse = [&](std::size_t inColour, std::size_t step, int value) {
        if (value > highest)
            throw Failure(ExitCode::Unsupported, pattern.text.Path(),
                          "gives an ink the value " + std::to_string(value) + " at step " +
                              std::to_string(step) + " of in-colour " +
                              Shown(pattern.inColours[inColour]) + "; --bits " +
                              std::to_string(bits) + " holds values up to " +
                              std::to_string(highest));
    };
    if (bits < 8)
        VisitInkValues(ReadOutline(pattern.text.Bytes()), refuse);
}

// The samples of a row follow each other, as those of one channel do.
std::optional<RowPlan> PlanPacking(const TiffFile& file, const TiffPicture& to)
{
    if (to.bits == 8)
        return std::nullopt;
    RowRequest request;
    request.from.width = std::int64_t{to.width} * to.channels;
    request.from.channels = 1;
    request.from.bits = 8;
    request.to = request.from;
    request.to.bits = to.bits;
    request.to.planar = true;
    request.tones = Tones::Raw;
    return PlanRows(file, request);
}

// The bytes of a row before it was packed.
class UnpackedRow
{
public:
    explicit UnpackedRow(const TiffPicture& picture)
        : bits(picture.bits), samples(static_cast<std::size_t>(picture.width) *
                                      static_cast<std::size_t>(picture.channels))
    {}

    const unsigned char* Of(const unsigned char* row)
    {
        if (bits == 8)
            return row;
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<unsigned char>(row[i / 4] >> (6 - i % 4 * 2) & 3);
        return samples.data();
    }

private:
    int bits;
    std::vector<unsigned char> samples;
};

} // namespace

SimulationPlan PlanSimulation(const TiffFile& file, const SimulateOptions& options,
                              const LoadedPattern& pattern, const StepChoice& steps)
{
    RefuseWideInks(pattern, options.bits);
    const TiffPicture from = ReadPicture(file);
    RefuseOtherColours(from, file.Path());
    RefuseRawWords(from, options.levels, file.Path());
    std::vector<Channel> channels = ReadChannels(file, from);
    ChannelChoice choice = ChooseChannels(pattern.inColours, channels, file.Path());
    const TiffPicture to = PlanPicture(from, static_cast<int>(pattern.outInks.size()), options);

    PageTags tags;
    tags.photometric = PHOTOMETRIC_SEPARATED;
    tags.keepColourTags = false;
    tags.keepValueTags = false;
    tags.inkSet = std::uint16_t{INKSET_MULTIINK};
    tags.numberOfInks = static_cast<std::uint16_t>(pattern.outInks.size());
    tags.inkNames = pattern.outInks;
    tags.dotRange = {0, std::min(pattern.fullInk, (1 << to.bits) - 1)};

    const InkCodes codes = ReadInkCodes(file, from, options.input);
    StepPlan stepPlan(file, from, codes, choice, steps);
    return {from,
            to,
            std::move(tags),
            std::move(channels),
            std::move(choice),
            std::move(stepPlan),
            PlanPacking(file, to)};
}

bool SimulatePage(const TiffFile& file, const TiffFile& out, const SimulationPlan& plan,
                  SimulationRun& run, PreviewPng* preview, Progress& progress)
{
    // More threads than rows would have none to start at.
    const auto mostThreads = std::min<std::int64_t>(run.options.common.threads, plan.from.height);
    const int threads = run.pattern.RunsOnOneThread() ? 1 : static_cast<int>(mostThreads);
    RowSimulation simulation(plan, run, threads);
    UnpackedRow shown(plan.to);
    WriteTags(file, out, plan.to, plan.tags);
    WriteRows(
        {file, out, plan.from, plan.to, run.options.output.path, threads},
        [&](int worker, std::int64_t row, const unsigned char* oldRow, unsigned char* newRow) {
            simulation.Simulate(worker, row, oldRow, newRow);
        },
        [&](const unsigned char* newRow) {
            if (preview != nullptr)
                preview->AddRow(shown.Of(newRow));
        },
        progress);
    if (simulation.CutInks())
        throw Failure(ExitCode::Unsupported, run.pattern.text.Path(),
                      "gives inks values above 3, which --bits 2 can't hold");
    if (run.options.runsOn)
        run.rowsBefore += plan.from.height;
    return simulation.SawHighStep();
}

} // namespace zvk::Pelkraft::Client
