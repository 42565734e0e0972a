#include "tools/pelkraft/page_conversion.h"

#include "pelkraft/image_row.h"
#include "tools/pelkraft/channel_list.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/row_readers.h"
#include "tools/pelkraft/strip_writer.h"
#include "tools/pelkraft/tag_writer.h"
#include "tools/pelkraft/vector_level.h"
#include "tools/pelkraft/workers.h"
#include "zvk/system_tools.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

constexpr std::int64_t wantedBandBytes = std::int64_t{8} << 20;
constexpr std::int64_t cacheLineBytes = 64;

RowShape ShapeOf(const TiffPicture& picture)
{
    RowShape shape;
    shape.width = picture.width;
    shape.channels = picture.channels;
    shape.bits = picture.bits;
    // One channel of packed bits is a plane already.
    shape.planar = picture.separate || (picture.bits < 8 && picture.channels == 1);
    shape.woven = picture.bits < 8 && !shape.planar;
    return shape;
}

std::int64_t Stride(std::int64_t rowBytes)
{
    return (rowBytes + cacheLineBytes - 1) / cacheLineBytes * cacheLineBytes;
}

std::int64_t RowBytes(const TiffPicture& picture)
{
    return FileRowBytes(picture.width, picture.channels, picture.bits, picture.separate);
}

// Levels are stretched where one side alone has them; between two such depths they stay numbers.
Tones DefaultTones(int fromBits, int toBits)
{
    return (fromBits < 8) != (toBits < 8) ? Tones::Scale : Tones::Raw;
}

TiffPicture PlanShape(const TiffPicture& from, const ConvertOptions& options,
                      const std::vector<int>& map, const std::string& path)
{
    TiffPicture to = from;
    to.separate = options.separate.value_or(from.separate);
    to.bits = options.bits.value_or(from.bits);
    if (!map.empty())
        to.channels = static_cast<int>(map.size());
    const std::int64_t width = std::int64_t{from.width} * options.repeat;
    if (width > std::numeric_limits<std::int32_t>::max())
        throw Failure(ExitCode::Unsupported, path,
                      "would be " + std::to_string(width) +
                          " pixels wide; supported are up to 2147483647");
    to.width = static_cast<std::uint32_t>(width);
    to.rowsPerStrip = ChooseRowsPerStrip(to);
    to.tiled = false;
    to.compression = ChooseCompression(from, to);
    return to;
}

// Reads a band, converts it on all threads, and writes it; again and again.
class BandLoop
{
public:
    BandLoop(const TiffFile& newFile, const TiffFile& newOut, const PagePlan& newPlan,
             const ConvertOptions& newOptions)
        : file(newFile), plan(newPlan), options(newOptions), reader(OpenRows(newFile, plan.from)),
          writer(newOut, plan.to), bandRows(BandRows(plan)), oldStride(Stride(RowBytes(plan.from))),
          newStride(Stride(RowBytes(plan.to))),
          oldRows(static_cast<std::size_t>(oldStride * bandRows)),
          newRows(static_cast<std::size_t>(newStride * bandRows))
    {
        for (int worker = 0; worker < options.threads; ++worker)
            pipelines.emplace_back(plan.steps, options.portable);
    }

    void Run(Progress& progress)
    {
        for (std::uint32_t first = 0; first < plan.from.height; first += rows) {
            rows = std::min(bandRows, plan.from.height - first);
            for (std::uint32_t row = 0; row < rows; ++row) {
                StopIfInterrupted(options.output);
                reader->ReadRow(oldRows.Data() + oldStride * row);
            }
            ConvertBand();
            StopIfInterrupted(options.output);
            writer.WriteRows(newRows.Data(), newStride, rows);
            progress.Advance(rows);
        }
    }

    bool CutSamples() const
    {
        return std::any_of(pipelines.begin(), pipelines.end(),
                           [](const RowPipeline& pipeline) { return pipeline.CutSamples(); });
    }

private:
    void ConvertBand()
    {
        const auto convert = [this](int worker, std::int64_t first, std::int64_t end) {
            RowPipeline& pipeline = pipelines[static_cast<std::size_t>(worker)];
            for (std::int64_t row = first; row < end; ++row)
                pipeline.Run(oldRows.Data() + oldStride * row, newRows.Data() + newStride * row);
        };
        try {
            ShareOut(options.threads, rows, convert);
        } catch (const char* text) {
            throw Failure(ExitCode::Unsupported, file.Path(),
                          std::string("the library refuses it: ") + text);
        }
    }

    const TiffFile& file;
    const PagePlan& plan;
    const ConvertOptions& options;
    std::unique_ptr<IRowReader> reader;
    StripWriter writer;
    std::uint32_t bandRows;
    std::uint32_t rows = 0;
    std::int64_t oldStride;
    std::int64_t newStride;
    RowBuffer oldRows;
    RowBuffer newRows;
    std::vector<RowPipeline> pipelines;
};

} // namespace

PagePlan PlanPage(const TiffFile& file, const ConvertOptions& options)
{
    PagePlan plan;
    plan.from = ReadPicture(file);
    const std::vector<Channel> channels = ReadChannels(file, plan.from);
    if (!options.channels.empty())
        plan.request.map = ParseChannelList(options.channels, channels, file.Path());
    plan.to = PlanShape(plan.from, options, plan.request.map, file.Path());
    plan.tags = PlanTags(file, plan.from, channels, plan.request.map, plan.to.bits);
    plan.tags.repeat = options.repeat;

    plan.request.from = ShapeOf(plan.from);
    plan.request.to = ShapeOf(plan.to);
    plan.request.factor = options.mirror ? -options.repeat : options.repeat;
    plan.request.tones = options.tones.value_or(DefaultTones(plan.from.bits, plan.to.bits));
    plan.request.portableRoad = options.portable || SystemTools::GetSseVersion() < vectorLevel;
    try {
        plan.steps = PlanRow(plan.request);
    } catch (const Failure& failure) {
        throw Failure(failure.Code(), file.Path(), failure.what());
    }
    return plan;
}

bool ConvertPage(const TiffFile& file, const TiffFile& out, const PagePlan& plan,
                 const ConvertOptions& options, Progress& progress)
{
    WriteTags(file, out, plan.to, plan.tags);
    BandLoop loop(file, out, plan, options);
    loop.Run(progress);
    if (TIFFWriteDirectory(out.Get()) != 1)
        out.Throw(ExitCode::ReadWrite, "cannot be written");
    return loop.CutSamples();
}

std::uint32_t BandRows(const PagePlan& plan)
{
    const std::int64_t rowBytes = Stride(RowBytes(plan.from)) + Stride(RowBytes(plan.to));
    const std::int64_t strips = wantedBandBytes / (rowBytes * plan.to.rowsPerStrip);
    const std::int64_t rows = std::max<std::int64_t>(strips, 1) * plan.to.rowsPerStrip;
    return static_cast<std::uint32_t>(
        std::min<std::int64_t>(rows, static_cast<std::int64_t>(plan.to.height)));
}

} // namespace zvk::Pelkraft::Client
