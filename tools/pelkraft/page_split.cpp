#include "tools/pelkraft/page_split.h"

#include "tools/pelkraft/band_reader.h"
#include "tools/pelkraft/channel_list.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/ink_names.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/one_behind.h"
#include "tools/pelkraft/page_inks.h"
#include "tools/pelkraft/page_rows.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/strip_writer.h"
#include "tools/pelkraft/tag_writer.h"
#include "tools/pelkraft/turned_samples.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// Strips of all plates together stay within this.
constexpr std::int64_t mostStripBytes = std::int64_t{16} << 20;

std::vector<int> ChooseChannels(const TiffFile& file, const std::vector<Channel>& channels,
                                const std::vector<PageInk>& inks, const std::string& list,
                                PageTags& tags)
{
    if (!list.empty()) {
        std::vector<int> chosen = ParseChannelList(list, channels, file.Path(), {"--inks", false});
        if (std::find(chosen.begin(), chosen.end(), -1) != chosen.end())
            throw Failure(ExitCode::Usage, file.Path(),
                          "an empty channel makes no plate; --inks takes numbers and names");
        return chosen;
    }
    std::vector<int> chosen;
    chosen.reserve(inks.size());
    for (const PageInk& ink : inks)
        chosen.push_back(static_cast<int>(ink.sample));
    if (chosen.size() < channels.size())
        tags.warnings.push_back("alpha channels are no inks and get no plate; --inks names them");
    return chosen;
}

std::string NameOf(const std::vector<Channel>& channels, const std::vector<PageInk>& inks,
                   int channel)
{
    const auto index = static_cast<std::size_t>(channel);
    const auto ink = std::find_if(inks.begin(), inks.end(),
                                  [&](const PageInk& known) { return known.sample == index; });
    if (ink != inks.end())
        return ink->name;
    return channels[index].name.empty() ? NumberedName(index) : channels[index].name;
}

void PlanTagsOfPlates(const TiffFile& file, SplitPlan& plan)
{
    plan.tags.photometric = PHOTOMETRIC_MINISBLACK;
    plan.tags.keepColourTags = false;
    plan.tags.keepValueTags = false;
    const int highest = (1 << plan.from.bits) - 1;
    const InkCodes low =
        plan.turned ? InkCodes{highest - plan.codes.none, highest - plan.codes.full} : plan.codes;
    if (low != InkCodes{highest, 0})
        plan.tags.dotRange = DotRange{low.none, low.full};
    std::uint32_t bytes = 0;
    void* profile = nullptr;
    if (TIFFGetField(file.Get(), TIFFTAG_ICCPROFILE, &bytes, &profile) == 1)
        plan.tags.warnings.push_back("the profile is about all inks together; the plates are "
                                     "written without it");
}

TiffPicture PlanPlate(const TiffPicture& from, std::size_t plates, const OutputOptions& output)
{
    TiffPicture to = from;
    to.channels = 1;
    to.separate = false;
    to.photometric = PHOTOMETRIC_MINISBLACK;
    PlanStrips(from, to, output);
    const std::int64_t mostRows =
        mostStripBytes / (to.RowBytes() * static_cast<std::int64_t>(plates));
    to.rowsPerStrip = static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(mostRows, 1, std::int64_t{to.rowsPerStrip}));
    return to;
}

// The rows of a picture with a plane for each plate.
TiffPicture PlanesOf(const SplitPlan& plan)
{
    TiffPicture planes = plan.to;
    planes.channels = static_cast<int>(plan.channels.size());
    planes.separate = true;
    return planes;
}

RowPlan PlanRowsOf(const TiffFile& file, const TiffPicture& from, const TiffPicture& to,
                   const std::vector<int>& channels)
{
    RowRequest request;
    request.from = ShapeOf(from);
    request.to = {to.width, static_cast<int>(channels.size()), to.bits, true};
    request.map = channels;
    request.tones = Tones::Raw;
    return PlanRows(file, request);
}

// The rows of all plates that are held at once.
class PlateRows
{
public:
    PlateRows(const SplitPlan& newPlan, std::uint32_t newRows, unsigned char* newBytes)
        : plan(newPlan), rows(newRows), planeBytes(plan.to.RowBytes()), bytes(newBytes)
    {}

    const unsigned char* First(std::size_t plate) const { return RowOf(plate, 0); }
    std::int64_t PlaneBytes() const { return planeBytes; }

    // Takes a row of all plates, plane after plane.
    void Scatter(const unsigned char* planes, std::int64_t row) const
    {
        for (std::size_t plate = 0; plate < plan.channels.size(); ++plate)
            CopySamples(planes + static_cast<std::int64_t>(plate) * planeBytes, RowOf(plate, row),
                        planeBytes, plan.turned);
    }

private:
    unsigned char* RowOf(std::size_t plate, std::int64_t row) const
    {
        return bytes + (static_cast<std::int64_t>(plate) * rows + row) * planeBytes;
    }

    const SplitPlan& plan;
    std::int64_t rows;
    std::int64_t planeBytes;
    unsigned char* bytes;
};

} // namespace

SplitPlan PlanSplit(const TiffFile& file, const InputOptions& input, const std::string& list,
                    const OutputOptions& output)
{
    const TiffPicture from = ReadPicture(file);
    const std::vector<PageInk> inks = ReadPageInks(file, from);
    const std::vector<Channel> channels = ReadChannels(file, from);
    PageTags tags;
    const std::vector<int> chosen = ChooseChannels(file, channels, inks, list, tags);
    const TiffPicture to = PlanPlate(from, chosen.size(), output);
    SplitPlan plan = {from, ReadInkCodes(file, from, input),   false, chosen, {}, to,
                      tags, PlanRowsOf(file, from, to, chosen)};
    plan.turned = plan.codes.InkIsHigh();
    for (const int channel : chosen)
        plan.inks.push_back(NameOf(channels, inks, channel));
    PlanTagsOfPlates(file, plan);
    return plan;
}

void SplitPage(const TiffFile& file, const std::vector<const TiffFile*>& plates,
               const SplitPlan& plan, int threads, Progress& progress)
{
    std::vector<StripWriter> writers;
    for (const TiffFile* plate : plates) {
        WriteTags(file, *plate, plan.to, plan.tags);
        writers.emplace_back(*plate, plan.to);
    }
    const TiffPicture planes = PlanesOf(plan);
    const std::uint32_t bandRows = BandRows(plan.from, planes);
    BandReader reader(file, plan.from, bandRows);
    std::vector<std::pair<RowPipeline, RowBuffer>> work;
    work.reserve(static_cast<std::size_t>(threads));
    for (int worker = 0; worker < threads; ++worker)
        work.emplace_back(RowPipeline(plan.rows),
                          RowBuffer(static_cast<std::size_t>(planes.RowBytes())));
    const BandBuffers newRows(static_cast<std::size_t>(planes.RowBytes()) * bandRows, threads);
    OneBehind writing(threads);
    for (std::uint32_t first = 0, rows = 0; first < plan.from.height; first += rows) {
        rows = std::min(bandRows, plan.from.height - first);
        const PlateRows made(plan, bandRows, newRows.For(first / bandRows));
        StopIfInterrupted(file.Path());
        reader.Next(rows);
        ShareOutRows(threads, rows, plan.from.RowBytes(),
                     [&](int worker, std::int64_t begin, std::int64_t end) {
                         auto& [pipeline, split] = work[static_cast<std::size_t>(worker)];
                         reader.Fetch(begin, end);
                         for (std::int64_t row = begin; row < end; ++row) {
                             pipeline.Run(reader.Row(row), split.Data());
                             made.Scatter(split.Data(), row);
                         }
                     });
        StopIfInterrupted(file.Path());
        writing.Run([&writers, made, rows] {
            for (std::size_t plate = 0; plate < writers.size(); ++plate)
                writers[plate].WriteRows(made.First(plate), made.PlaneBytes(), rows);
        });
        progress.Advance(rows);
    }
    writing.Finish();
    for (StripWriter& writer : writers)
        writer.EndPage();
}

} // namespace zvk::Pelkraft::Client
