#include "tools/pelkraft/page_conversion.h"

#include "tools/pelkraft/channel_list.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/page_rows.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/tag_writer.h"

#include <algorithm>
#include <limits>

namespace zvk::Pelkraft::Client {
namespace {

// Levels are stretched where one side alone has them; between two such depths they stay numbers.
Tones DefaultTones(int fromBits, int toBits)
{
    return (fromBits < 8) != (toBits < 8) ? Tones::Scale : Tones::Raw;
}

TiffPicture PlanPicture(const TiffPicture& from, const ConvertOptions& options,
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
    PlanStrips(from, to, options.output);
    return to;
}

void RefuseRawLines(const ConvertOptions& options, const TiffPicture& from, const TiffPicture& to,
                    const InkRange& range)
{
    if (range.lines && from.bits != to.bits && options.tones == Tones::Raw)
        throw Failure(ExitCode::Usage, options.input.path,
                      "--tones raw lets samples stay the numbers that they are, while --dot-range "
                      "scale and full, and --invert beside extra samples that are no ink, map them "
                      "to the new "
                      "depth; supported is one of both");
}

// JPEG and its like lose samples, and can't take all.
void AddCompressionLoss(const TiffPicture& from, const TiffPicture& to,
                        const OutputOptions& options, PageTags& tags)
{
    const bool same =
        to.compression == from.compression ||
        (from.compression == COMPRESSION_DEFLATE && to.compression == COMPRESSION_ADOBE_DEFLATE);
    if (!same && !options.compression && !options.IsPipe())
        tags.warnings.push_back(CompressionName(from.compression) +
                                " compression is not kept: the new page is compressed by " +
                                CompressionName(to.compression) + ", which loses nothing");
}

} // namespace

PagePlan PlanPage(const TiffFile& file, const ConvertOptions& options)
{
    const TiffPicture from = ReadPicture(file);
    const std::vector<Channel> channels = ReadChannels(file, from);
    RowRequest request;
    if (!options.channels.empty())
        request.map =
            ParseChannelList(options.channels, channels, file.Path(), {"--channels", true});
    const TiffPicture to = PlanPicture(from, options, request.map, file.Path());
    RangeRequest rangeRequest = {{}, to.bits, options.invert};
    for (const Channel& channel : channels)
        rangeRequest.inks.push_back(channel.ink);
    InkRange range = PlanInkRange(file, from, options.input, rangeRequest);
    RefuseRawLines(options, from, to, range);
    PageTags tags = PlanTags(file, from, channels, request.map, to.bits, range);
    AddCompressionLoss(from, to, options.output, tags);
    std::replace(request.map.begin(), request.map.end(), PLK_EMPTY, PLK_CONSTANT(range.empty));
    tags.repeat = options.repeat;

    request.from = ShapeOf(from);
    request.to = ShapeOf(to);
    request.repeat = options.repeat;
    request.mirror = options.mirror;
    request.invert = range.invert;
    request.lines = range.lines;
    request.tones = options.tones.value_or(DefaultTones(from.bits, to.bits));
    request.portableRoad = options.portable;
    return {from, to, std::move(tags), std::move(range), PlanRows(file, request)};
}

bool ConvertPage(const TiffFile& file, const TiffFile& out, const PagePlan& plan,
                 const ConvertOptions& options, Progress& progress)
{
    std::vector<RowPipeline> pipelines;
    for (int worker = 0; worker < options.common.threads; ++worker)
        pipelines.emplace_back(plan.rows);
    WriteTags(file, out, plan.to, plan.tags);
    const RowOrder order = {options.flip, {options.output.path, options.input.spoolLimit}};
    WriteRows(
        {file, out, plan.from, plan.to, options.output.path, options.common.threads, order,
         plan.rows.KeepsRows()},
        [&](int worker, std::int64_t, const unsigned char* oldRow, unsigned char* newRow) {
            pipelines[static_cast<std::size_t>(worker)].Run(oldRow, newRow);
        },
        [](const unsigned char*) {}, progress);
    return std::any_of(pipelines.begin(), pipelines.end(),
                       [](const RowPipeline& pipeline) { return pipeline.CutSamples(); });
}

} // namespace zvk::Pelkraft::Client
