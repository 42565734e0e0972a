#include "tools/pelkraft/simulation.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/page_rows.h"
#include "tools/pelkraft/pattern_engines.h"
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
    Worker(const SimulationPlan& plan, const LoadedPattern& loaded)
        : pipeline(plan.rows), steps(static_cast<std::size_t>(plan.rows.Request().to.Bytes())),
          pattern(loaded.Make())
    {}

    RowPipeline pipeline;
    RowBuffer steps;
    std::unique_ptr<DotWeavePattern> pattern;
    std::int64_t nextRow = 0;
    bool sawHighStep = false;
};

// Takes rows of the file to steps, and these to rows of the new page.
class RowSimulation
{
public:
    RowSimulation(const SimulationPlan& newPlan, const SimulateOptions& options,
                  const LoadedPattern& pattern, int threads)
        : plan(newPlan), levels(options.levels, pattern.topSteps)
    {
        for (int worker = 0; worker < threads; ++worker)
            workers.emplace_back(plan, pattern);
    }

    void Simulate(int index, std::int64_t row, unsigned char* oldRow, unsigned char* newRow)
    {
        Worker& worker = workers[static_cast<std::size_t>(index)];
        worker.pipeline.Run(oldRow, worker.steps.Data());
        if (levels.Apply(worker.steps.Data(), plan.from.width))
            worker.sawHighStep = true;
        // Rows of other threads are passed by without a pixel.
        for (; worker.nextRow < row; ++worker.nextRow)
            worker.pattern->ApplyPattern(worker.steps.Data(), newRow, 0);
        worker.pattern->ApplyPattern(worker.steps.Data(), newRow, plan.from.width);
        ++worker.nextRow;
    }

    bool SawHighStep() const
    {
        return std::any_of(workers.begin(), workers.end(),
                           [](const Worker& worker) { return worker.sawHighStep; });
    }

private:
    const SimulationPlan& plan;
    StepLevels levels;
    std::vector<Worker> workers;
};

TiffPicture PlanPicture(const TiffPicture& from, int outInks, const SimulateOptions& options)
{
    TiffPicture to = from;
    to.separate = false;
    to.bits = 8;
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

int HighestInkValue(const InColorRecord& record)
{
    int highest = 0;
    for (std::size_t number = 0; number < static_cast<std::size_t>(record.numSteps); ++number) {
        const StepValues& step = record.steps[number];
        for (std::size_t i = 0; i < static_cast<std::size_t>(step.numRandoms); ++i) {
            for (std::size_t p = 0; p < static_cast<std::size_t>(record.numInks); ++p) {
                if (step.table[i][p] != unsetValue)
                    highest = std::max(highest, step.table[i][p] & 0xFF);
            }
        }
    }
    return highest;
}

int HighestInkValue(const PatternOutline& outline)
{
    int highest = 0;
    for (std::size_t i = 0; i < outline.InColourCount(); ++i)
        highest = std::max(highest, HighestInkValue(outline.Record(i)));
    return highest == 0 ? 255 : highest;
}

// Brings the range of ink to the whole of a byte. The whole of the samples takes the library's way.
void RequestRange(const TiffPicture& from, const InkCodes& codes, RowRequest& request)
{
    if (codes != InkCodes{0, (1 << from.bits) - 1})
        request.lines = SampleLines{{codes.none, codes.full, 0, 255}, from.channels};
}

RowRequest RequestFor(const TiffPicture& from, const SimulateOptions& options,
                      const ChannelChoice& choice)
{
    RowRequest request;
    request.from = ShapeOf(from);
    request.to.width = from.width;
    request.to.channels = static_cast<int>(choice.map.size());
    request.to.bits = 8;
    request.map = choice.map;
    request.tones = options.levels == Levels::Raw ? Tones::Raw : Tones::Scale;
    return request;
}

} // namespace

LoadedPattern::LoadedPattern(const PatternText& newText, DotWeavePattern::Engine newEngine)
    : text(newText), engine(newEngine)
{
    if (engine == DotWeavePattern::Sse && !SseEngineRuns())
        throw Failure(ExitCode::Unsupported, {},
                      "this processor doesn't run the sse engine; supported are auto, x86 and "
                      "reference");
    const auto pattern = Make();
    const PatternOutline outline = ReadOutline(text.Bytes());
    inColours = outline.InColourList();
    outInks = outline.OutInkList();
    inColours.resize(static_cast<std::size_t>(pattern->GetInColorCount()));
    outInks.resize(static_cast<std::size_t>(pattern->GetOutColorCount()));
    for (int i = 0; i < pattern->GetInColorCount(); ++i) {
        // The reference engine answers the number of value lines, which is another thing.
        const auto index = static_cast<std::size_t>(i);
        const int answer = RunsOnOneThread() ? outline.Record(index).numSteps - 1
                                             : pattern->GetNumberOfStepsForInColor(i);
        topSteps.push_back(answer >= 0 && answer < stepsOfInColor ? answer : 0);
    }
    // There the reference engine reads entries in a way of its own.
    if (!RunsOnOneThread() || outline.version <= 2)
        fullInk = HighestInkValue(outline);
}

std::unique_ptr<DotWeavePattern> LoadedPattern::Make() const
{
    std::string refusal;
    auto pattern = TryPattern(text, engine, refusal);
    if (pattern == nullptr)
        throw Failure(ExitCode::BadPattern, text.Path(),
                      "the " + EngineName(engine) + " engine refuses it: \"" + refusal +
                          "\"; pelkraft pattern shows where, and which engines load it");
    return pattern;
}

SimulationPlan PlanSimulation(const TiffFile& file, const SimulateOptions& options,
                              const LoadedPattern& pattern)
{
    const TiffPicture from = ReadPicture(file);
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
    tags.dotRange = {0, pattern.fullInk};

    RowRequest request = RequestFor(from, options, choice);
    if (options.levels == Levels::Quantize)
        RequestRange(from, ReadInkCodes(file, from, options.input), request);
    RowPlan rows = PlanRows(file, request);
    return {from, to, std::move(tags), std::move(channels), std::move(choice), std::move(rows)};
}

bool SimulatePage(const TiffFile& file, const TiffFile& out, const SimulationPlan& plan,
                  const SimulateOptions& options, const LoadedPattern& pattern, PreviewPng* preview,
                  Progress& progress)
{
    // More threads than rows would have none to start at.
    const auto mostThreads = std::min<std::int64_t>(options.common.threads, plan.from.height);
    const int threads = pattern.RunsOnOneThread() ? 1 : static_cast<int>(mostThreads);
    RowSimulation simulation(plan, options, pattern, threads);
    WriteTags(file, out, plan.to, plan.tags);
    WriteRows(
        {file, out, plan.from, plan.to, options.output.path, threads},
        [&](int worker, std::int64_t row, unsigned char* oldRow, unsigned char* newRow) {
            simulation.Simulate(worker, row, oldRow, newRow);
        },
        [&](const unsigned char* newRow) {
            if (preview != nullptr)
                preview->AddRow(newRow);
        },
        progress);
    return simulation.SawHighStep();
}

} // namespace zvk::Pelkraft::Client
