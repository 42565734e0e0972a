#include "tools/pelkraft/simulation.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/outline_reader.h"
#include "tools/pelkraft/pattern_engines.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/row_readers.h"
#include "tools/pelkraft/strip_writer.h"
#include "tools/pelkraft/tag_writer.h"
#include "tools/pelkraft/workers.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t wantedBandBytes = std::int64_t{8} << 20;
constexpr std::int64_t largestRow = std::numeric_limits<std::int32_t>::max();

std::int64_t RowBytes(const TiffPicture& picture)
{
    return FileRowBytes(picture.width, picture.channels, picture.bits, picture.separate);
}

// What one thread has of its own.
struct Worker
{
    Worker(const SimulationPlan& plan, const LoadedPattern& loaded)
        : pipeline(plan.steps, false), steps(static_cast<std::size_t>(plan.request.to.Bytes())),
          pattern(loaded.Make())
    {}

    RowPipeline pipeline;
    RowBuffer steps;
    std::unique_ptr<DotWeavePattern> pattern;
    std::int64_t nextRow = 0;
    bool sawHighStep = false;
};

// Reads a band, simulates it on all threads, and writes it; again and again.
class BandLoop
{
public:
    BandLoop(const TiffFile& file, const TiffFile& out, const SimulationPlan& newPlan,
             const SimulateOptions& newOptions, const LoadedPattern& pattern,
             PreviewPicture* newPreview)
        : plan(newPlan), options(newOptions), preview(newPreview),
          levels(options.levels, pattern.topSteps), reader(OpenRows(file, plan.from)),
          writer(out, plan.to), bandRows(BandRows()),
          oldRows(static_cast<std::size_t>(RowBytes(plan.from) * bandRows)),
          newRows(static_cast<std::size_t>(RowBytes(plan.to) * bandRows))
    {
        threads = pattern.RunsOnOneThread() ? 1 : std::min<int>(options.threads, MostThreads());
        for (int worker = 0; worker < threads; ++worker)
            workers.emplace_back(plan, pattern);
    }

    void Run(Progress& progress)
    {
        for (firstRow = 0; firstRow < plan.from.height; firstRow += rows) {
            rows = std::min(bandRows, plan.from.height - firstRow);
            for (std::uint32_t row = 0; row < rows; ++row) {
                StopIfInterrupted(options.output);
                reader->ReadRow(OldRow(row));
            }
            ShareOut(threads, rows, [this](int worker, std::int64_t first, std::int64_t end) {
                for (std::int64_t row = first; row < end; ++row)
                    Simulate(workers[static_cast<std::size_t>(worker)], row);
            });
            StopIfInterrupted(options.output);
            writer.WriteRows(newRows.Data(), RowBytes(plan.to), rows);
            for (std::uint32_t row = 0; preview != nullptr && row < rows; ++row)
                preview->AddRow(NewRow(row));
            progress.Advance(rows);
        }
    }

    bool SawHighStep() const
    {
        return std::any_of(workers.begin(), workers.end(),
                           [](const Worker& worker) { return worker.sawHighStep; });
    }

private:
    unsigned char* OldRow(std::int64_t row) const
    {
        return oldRows.Data() + RowBytes(plan.from) * row;
    }
    unsigned char* NewRow(std::int64_t row) const
    {
        return newRows.Data() + RowBytes(plan.to) * row;
    }

    // More would have no row to start at.
    int MostThreads() const
    {
        return static_cast<int>(std::min<std::uint32_t>(plan.from.height, mostThreads));
    }

    std::uint32_t BandRows() const
    {
        const std::int64_t stripBytes =
            (RowBytes(plan.from) + RowBytes(plan.to)) * plan.to.rowsPerStrip;
        const std::int64_t strips = std::max<std::int64_t>(wantedBandBytes / stripBytes, 1);
        return static_cast<std::uint32_t>(
            std::min<std::int64_t>(strips * plan.to.rowsPerStrip, plan.from.height));
    }

    void Simulate(Worker& worker, std::int64_t row)
    {
        worker.pipeline.Run(OldRow(row), worker.steps.Data());
        if (levels.Apply(worker.steps.Data(), plan.from.width))
            worker.sawHighStep = true;
        // Rows of other threads are passed by without a pixel.
        for (; worker.nextRow < firstRow + row; ++worker.nextRow)
            worker.pattern->ApplyPattern(worker.steps.Data(), NewRow(row), 0);
        worker.pattern->ApplyPattern(worker.steps.Data(), NewRow(row), plan.from.width);
        ++worker.nextRow;
    }

    const SimulationPlan& plan;
    const SimulateOptions& options;
    PreviewPicture* preview;
    StepLevels levels;
    std::unique_ptr<IRowReader> reader;
    StripWriter writer;
    std::uint32_t bandRows;
    RowBuffer oldRows;
    RowBuffer newRows;
    int threads = 1;
    std::uint32_t firstRow = 0;
    std::uint32_t rows = 0;
    std::vector<Worker> workers;
};

TiffPicture PlanShape(const TiffPicture& from, int outInks, const std::string& path)
{
    TiffPicture to = from;
    to.separate = false;
    to.bits = 8;
    to.channels = outInks;
    to.photometric = PHOTOMETRIC_SEPARATED;
    const std::int64_t bytes = RowBytes(to);
    if (bytes > largestRow)
        throw Failure(ExitCode::Unsupported, path,
                      "would need rows of " + std::to_string(bytes) +
                          " bytes; supported are up to 2147483647");
    to.rowsPerStrip = ChooseRowsPerStrip(to);
    to.tiled = false;
    to.compression = ChooseCompression(from, to);
    return to;
}

void RefuseRawWords(const TiffPicture& from, Levels levels, const std::string& path)
{
    if (levels == Levels::Raw && from.bits == 16)
        throw Failure(ExitCode::Unsupported, path,
                      "has samples of 16 bits; --levels raw supports 1, 2 and 8");
}

RowRequest PlanRows(const TiffPicture& from, const SimulateOptions& options,
                    const ChannelChoice& choice)
{
    RowRequest request;
    request.from.width = from.width;
    request.from.channels = from.channels;
    request.from.bits = from.bits;
    // One channel of packed bits is a plane already.
    request.from.planar = from.separate || (from.bits < 8 && from.channels == 1);
    request.from.woven = from.bits < 8 && !request.from.planar;
    request.to.width = from.width;
    request.to.channels = static_cast<int>(choice.map.size());
    request.to.bits = 8;
    request.map = choice.map;
    request.tones = options.levels == Levels::Raw ? Tones::Raw : Tones::Scale;
    request.portableRoad = !SseEngineRuns();
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
    const PatternOutline outline = ReadOutline(text);
    inColours = outline.InColourList();
    outInks = outline.OutInkList();
    inColours.resize(static_cast<std::size_t>(pattern->GetInColorCount()));
    outInks.resize(static_cast<std::size_t>(pattern->GetOutColorCount()));
    for (int i = 0; i < pattern->GetInColorCount(); ++i) {
        // The reference engine answers the number of value lines, which is another thing.
        const auto index = static_cast<std::size_t>(i);
        const int answer = RunsOnOneThread() && index < outline.inColours.size()
                               ? outline.inColours[index].stepCount - 1
                               : pattern->GetNumberOfStepsForInColor(i);
        topSteps.push_back(answer >= 0 && answer < stepLimit ? answer : 0);
    }
}

std::unique_ptr<DotWeavePattern> LoadedPattern::Make() const
{
    std::string refusal;
    auto pattern = TryPattern(text, engine, refusal);
    if (pattern == nullptr)
        throw Failure(ExitCode::BadPattern, text.Path(),
                      "the " + EngineName(engine) + " engine refuses it: \"" + refusal +
                          "\"; pelkraft pattern tells where, and which engines load it");
    return pattern;
}

SimulationPlan PlanSimulation(const TiffFile& file, const SimulateOptions& options,
                              const LoadedPattern& pattern)
{
    SimulationPlan plan;
    plan.from = ReadPicture(file);
    RefuseRawWords(plan.from, options.levels, file.Path());
    plan.channels = ReadChannels(file, plan.from);
    plan.choice = ChooseChannels(pattern.inColours, plan.channels, file.Path());
    plan.to = PlanShape(plan.from, static_cast<int>(pattern.outInks.size()), file.Path());

    plan.tags.photometric = PHOTOMETRIC_SEPARATED;
    plan.tags.keepColourTags = false;
    plan.tags.keepValueTags = false;
    plan.tags.inkSet = std::uint16_t{INKSET_MULTIINK};
    plan.tags.numberOfInks = static_cast<std::uint16_t>(pattern.outInks.size());
    plan.tags.inkNames = pattern.outInks;

    plan.request = PlanRows(plan.from, options, plan.choice);
    try {
        plan.steps = PlanRow(plan.request);
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), file.Path(), failure.what());
    }
    return plan;
}

bool SimulatePage(const TiffFile& file, const TiffFile& out, const SimulationPlan& plan,
                  const SimulateOptions& options, const LoadedPattern& pattern,
                  PreviewPicture* preview, Progress& progress)
{
    WriteTags(file, out, plan.to, plan.tags);
    BandLoop loop(file, out, plan, options, pattern, preview);
    loop.Run(progress);
    if (TIFFWriteDirectory(out.Get()) != 1)
        out.Throw(ExitCode::ReadWrite, "cannot be written");
    return loop.SawHighStep();
}

} // namespace zvk::Pelkraft::Client
