#include "tools/pelkraft/page_join.h"

#include "tools/pelkraft/band_reader.h"
#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/interrupt.h"
#include "tools/pelkraft/one_behind.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/page_rows.h"
#include "tools/pelkraft/plate_names.h"
#include "tools/pelkraft/row_pipeline.h"
#include "tools/pelkraft/strip_writer.h"
#include "tools/pelkraft/tag_writer.h"
#include "tools/pelkraft/turned_samples.h"

#include <algorithm>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// The tag that holds the names counts their bytes in 16 bits.
constexpr std::size_t mostNameBytes = 65535;

std::string SizeWords(const TiffPicture& picture)
{
    return std::to_string(picture.width) + " x " + std::to_string(picture.height) + " pixels";
}

std::string CodeWords(const InkCodes& codes)
{
    return std::to_string(codes.none) + " to " + std::to_string(codes.full);
}

void RefuseOtherThanPlate(const TiffFile& file, const TiffPicture& picture)
{
    if (picture.channels != 1)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "has " + std::to_string(picture.channels) +
                          " channels; a plate has 1, and the composite that some programs write "
                          "beside the plates is none");
    const bool known = picture.photometric == PHOTOMETRIC_MINISBLACK ||
                       picture.photometric == PHOTOMETRIC_MINISWHITE ||
                       picture.photometric == PHOTOMETRIC_SEPARATED;
    if (!known)
        throw Failure(ExitCode::Unsupported, file.Path(),
                      "is " + PhotometricName(picture.photometric) +
                          "; supported are plates that are MinIsBlack, MinIsWhite or separated "
                          "inks");
}

// A plate keeps a range as its own samples have it, from no ink to full ink.
InkCodes ReadPlateCodes(const TiffFile& file, const TiffPicture& picture, const InputOptions& input)
{
    std::uint16_t none = 0;
    std::uint16_t full = 0;
    if (picture.photometric != PHOTOMETRIC_MINISBLACK || input.dotRange ||
        input.polarity != Polarity::Auto ||
        TIFFGetField(file.Get(), TIFFTAG_DOTRANGE, &none, &full) != 1 || none <= full)
        return ReadInkCodes(file, picture, input);
    const int highest = (1 << picture.bits) - 1;
    if (none > highest)
        throw Failure(ExitCode::BadInput, file.Path(),
                      "has a dot range from " + std::to_string(none) + ", where samples reach " +
                          std::to_string(highest) + "; --dot-range LO,HI gives another");
    return {none, full};
}

[[noreturn]] void RefuseUnequal(const TiffFile& file, const std::string& has, const TiffFile& first,
                                const std::string& firstHas)
{
    throw Failure(ExitCode::BadInput, file.Path(),
                  "has " + has + ", and " + first.Path() + " has " + firstHas +
                      "; plates of a page have the same");
}

InkCodes Turned(const InkCodes& codes, int bits)
{
    const int highest = (1 << bits) - 1;
    return codes.InkIsHigh() ? codes : InkCodes{highest - codes.none, highest - codes.full};
}

// The page's tags are those of its first plate, and so is what they say of the page as a whole.
PageTags TagsOf(const PlateGroup& group, const std::vector<TiffFile>& files,
                const std::vector<JoinedPlate>& plates)
{
    PageTags tags;
    tags.photometric = PHOTOMETRIC_SEPARATED;
    tags.keepColourTags = false;
    tags.keepValueTags = false;
    std::size_t nameBytes = 0;
    for (const PlateArgument& plate : group) {
        tags.inkNames.push_back(plate.ink);
        nameBytes += plate.ink.size() + 1;
    }
    if (nameBytes > mostNameBytes)
        throw Failure(ExitCode::Unsupported, group[0].path,
                      "the names of the inks take " + std::to_string(nameBytes) +
                          " bytes; supported are " + std::to_string(mostNameBytes));
    WarnOfTwins(tags);
    tags.numberOfInks = static_cast<std::uint16_t>(group.size());
    tags.inkSet =
        static_cast<std::uint16_t>(AreProcessInks(tags.inkNames) ? INKSET_CMYK : INKSET_MULTIINK);
    const int bits = plates[0].picture.bits;
    const InkCodes codes = Turned(plates[0].codes, bits);
    if (codes != InkCodes{0, (1 << bits) - 1})
        tags.dotRange = DotRange{codes.none, codes.full};
    for (const TiffFile& file : files) {
        std::uint32_t bytes = 0;
        void* profile = nullptr;
        if (TIFFGetField(file.Get(), TIFFTAG_ICCPROFILE, &bytes, &profile) == 1)
            tags.warnings.push_back("a profile of one plate says nothing of the page; written "
                                    "without the colour profile");
    }
    return tags;
}

// A page as the plates have it: a plane for each.
TiffPicture PlanesOf(const std::vector<JoinedPlate>& plates)
{
    TiffPicture picture = plates[0].picture;
    picture.channels = static_cast<int>(plates.size());
    picture.separate = true;
    picture.photometric = PHOTOMETRIC_SEPARATED;
    return picture;
}

// The rows of all plates that are held at once.
class PlateBands
{
public:
    PlateBands(const std::vector<TiffFile>& files, const JoinPlan& newPlan, std::uint32_t rows)
        : plan(newPlan), planeBytes(plan.plates[0].picture.RowBytes())
    {
        RowOrder order;
        order.readers = static_cast<int>(files.size());
        for (std::size_t plate = 0; plate < files.size(); ++plate)
            readers.emplace_back(files[plate], plan.plates[plate].picture, rows, order);
    }

    void Next(std::uint32_t count)
    {
        for (BandReader& reader : readers)
            reader.Next(count);
    }

    void Fetch(std::int64_t begin, std::int64_t end) const
    {
        for (const BandReader& reader : readers)
            reader.Fetch(begin, end);
    }

    // Gathers a row of all plates, plane after plane, with high samples for much ink.
    void Gather(std::int64_t row, unsigned char* planes) const
    {
        for (std::size_t plate = 0; plate < readers.size(); ++plate)
            CopySamples(readers[plate].Row(row),
                        planes + static_cast<std::int64_t>(plate) * planeBytes, planeBytes,
                        plan.plates[plate].turned);
    }

private:
    const JoinPlan& plan;
    std::int64_t planeBytes;
    std::vector<BandReader> readers;
};

} // namespace

JoinPlan PlanJoin(const PlateGroup& group, const std::vector<TiffFile>& files,
                  const InputOptions& input, const OutputOptions& output)
{
    std::vector<JoinedPlate> plates;
    const PageResolution resolution = ReadResolution(files[0]);
    for (const TiffFile& file : files) {
        JoinedPlate plate;
        plate.picture = ReadPicture(file);
        RefuseOtherThanPlate(file, plate.picture);
        plate.codes = ReadPlateCodes(file, plate.picture, input);
        plate.turned = !plate.codes.InkIsHigh();
        plates.push_back(plate);
        const TiffPicture& first = plates[0].picture;
        if (plate.picture.width != first.width || plate.picture.height != first.height)
            RefuseUnequal(file, SizeWords(plate.picture), files[0], SizeWords(first));
        if (plate.picture.bits != first.bits)
            RefuseUnequal(file, std::to_string(plate.picture.bits) + " bits", files[0],
                          std::to_string(first.bits));
        if (!(ReadResolution(file) == resolution))
            RefuseUnequal(file, ReadResolution(file).Words(), files[0], resolution.Words());
        if (ReadOrientation(file) != ReadOrientation(files[0]))
            RefuseUnequal(file, "Orientation " + std::to_string(ReadOrientation(file)), files[0],
                          std::to_string(ReadOrientation(files[0])));
        const InkCodes codes = Turned(plate.codes, first.bits);
        const InkCodes firstCodes = Turned(plates[0].codes, first.bits);
        if (!(codes == firstCodes))
            RefuseUnequal(file, "a dot range of " + CodeWords(codes), files[0],
                          CodeWords(firstCodes));
    }
    PageTags tags = TagsOf(group, files, plates);
    const TiffPicture planes = PlanesOf(plates);
    TiffPicture to = planes;
    to.separate = false;
    to.channels = static_cast<int>(plates.size());
    // Strips as for tiles, which have none to be kept: a page that was split and is joined again
    // is the same file, whatever strips the plates have.
    to.tiled = true;
    PlanStrips(plates[0].picture, to, output);
    RowRequest request;
    request.from = ShapeOf(planes);
    request.to = ShapeOf(to);
    request.tones = Tones::Raw;
    return {std::move(plates), to, std::move(tags), PlanRows(files[0], request)};
}

void JoinPage(const std::vector<TiffFile>& files, const TiffFile& out, const JoinPlan& plan,
              int threads, Progress& progress)
{
    WriteTags(files[0], out, plan.to, plan.tags);
    const TiffPicture planes = PlanesOf(plan.plates);
    const std::uint32_t bandRows = BandRows(planes, plan.to);
    const std::int64_t rowBytes = plan.to.RowBytes();
    PlateBands plates(files, plan, bandRows);
    StripWriter writer(out, plan.to);
    std::vector<std::pair<RowPipeline, RowBuffer>> work;
    work.reserve(static_cast<std::size_t>(threads));
    for (int worker = 0; worker < threads; ++worker)
        work.emplace_back(RowPipeline(plan.rows),
                          RowBuffer(static_cast<std::size_t>(planes.RowBytes())));
    const BandBuffers newRows(static_cast<std::size_t>(rowBytes) * bandRows, threads);
    OneBehind writing(threads);
    for (std::uint32_t first = 0, rows = 0; first < plan.to.height; first += rows) {
        rows = std::min(bandRows, plan.to.height - first);
        unsigned char* const made = newRows.For(first / bandRows);
        StopIfInterrupted(out.Path());
        plates.Next(rows);
        ShareOutRows(threads, rows, planes.RowBytes(),
                     [&](int worker, std::int64_t begin, std::int64_t end) {
                         auto& [pipeline, gathered] = work[static_cast<std::size_t>(worker)];
                         plates.Fetch(begin, end);
                         for (std::int64_t row = begin; row < end; ++row) {
                             plates.Gather(row, gathered.Data());
                             pipeline.Run(gathered.Data(), made + rowBytes * row);
                         }
                     });
        StopIfInterrupted(out.Path());
        writing.Run([&writer, made, rowBytes, rows] { writer.WriteRows(made, rowBytes, rows); });
        progress.Advance(rows);
    }
    writing.Finish();
    writer.EndPage();
    for (const TiffFile& file : files)
        file.RequireSound();
}

} // namespace zvk::Pelkraft::Client
