#include "tools/pelkraft/check_rule_list.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/page_orientation.h"
#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/profile_header.h"

#include <tiffio.h>

#include <algorithm>
#include <cmath>

namespace zvk::Pelkraft::Client {
namespace {

// Between a poster seen from afar and the finest plate.
constexpr double leastDpi = 20;
constexpr double mostDpi = 12700;
constexpr double cmPerInch = 2.54;
// The places of more are not held.
constexpr std::uint64_t mostBlocks = std::uint64_t{1} << 22;
constexpr std::size_t mostProfileBytes = std::size_t{1} << 20;

void Add(CheckFindings& findings, const CheckedPage& page, const char* tag, std::string found,
         std::string expected, std::string advice)
{
    findings.push_back(
        {0, page.page, tag, std::move(found), std::move(expected), std::move(advice)});
}

// Colours of a photometric kind; 0 where they are not told.
std::uint64_t ColoursOf(const CheckedPage& page)
{
    switch (page.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_PALETTE:
    case PHOTOMETRIC_MASK:
        return 1;
    case PHOTOMETRIC_RGB:
    case PHOTOMETRIC_YCBCR:
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        return 3;
    case PHOTOMETRIC_SEPARATED:
        return page.inkSet.value_or(INKSET_CMYK) == INKSET_CMYK && !page.numberOfInks ? 4 : 0;
    default:
        return 0;
    }
}

// A resolution in pixels an inch; 0 where the unit is no length.
double Dpi(const CheckedPage& page, std::uint16_t tag)
{
    const RawTag* const found = page.Find(tag);
    const std::uint64_t unit = page.Number(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (found == nullptr || unit < RESUNIT_INCH || unit > RESUNIT_CENTIMETER)
        return 0;
    return page.file->Fraction(*found) * (unit == RESUNIT_CENTIMETER ? cmPerInch : 1);
}

std::string TagName(std::uint16_t tag)
{
    switch (tag) {
    case TIFFTAG_STRIPOFFSETS:
        return "StripOffsets";
    case TIFFTAG_STRIPBYTECOUNTS:
        return "StripByteCounts";
    case TIFFTAG_TILEOFFSETS:
        return "TileOffsets";
    case TIFFTAG_TILEBYTECOUNTS:
        return "TileByteCounts";
    case TIFFTAG_INKNAMES:
        return "InkNames";
    case TIFFTAG_ICCPROFILE:
        return "ICCProfile";
    default:
        return "tag " + std::to_string(tag);
    }
}

// Strips or tiles, and how many there should be.
struct Blocks
{
    bool tiled = false;
    const RawTag* offsets = nullptr;
    const RawTag* counts = nullptr;
    std::uint64_t width = 0;
    std::uint64_t rows = 0;
    std::uint64_t wanted = 0;

    std::string Name() const { return tiled ? "tile" : "strip"; }
};

std::uint64_t Divided(std::uint64_t number, std::uint64_t by)
{
    return by == 0 ? 0 : number / by + (number % by == 0 ? 0 : 1);
}

Blocks BlocksOf(const CheckedPage& page)
{
    Blocks blocks;
    blocks.tiled = page.Find(TIFFTAG_TILEOFFSETS) != nullptr;
    blocks.offsets = page.Find(blocks.tiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS);
    blocks.counts = page.Find(blocks.tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS);
    blocks.width = blocks.tiled ? page.Number(TIFFTAG_TILEWIDTH, 0) : page.width;
    blocks.rows = blocks.tiled
                      ? page.Number(TIFFTAG_TILELENGTH, 0)
                      : std::min(page.Number(TIFFTAG_ROWSPERSTRIP, page.height), page.height);
    const std::uint64_t columns = blocks.tiled ? Divided(page.width, blocks.width) : 1;
    blocks.wanted =
        columns * Divided(page.height, blocks.rows) * (page.separate ? page.channels : 1);
    return blocks;
}

// Bytes of the rows of a block that stand uncompressed.
std::uint64_t PlainBytes(const CheckedPage& page, const Blocks& blocks, std::uint64_t number)
{
    const std::uint64_t bits = page.bits * (page.separate ? 1 : page.channels) * blocks.width;
    std::uint64_t rows = blocks.rows;
    if (!blocks.tiled) {
        const std::uint64_t inPlane = std::max<std::uint64_t>(Divided(page.height, rows), 1);
        const std::uint64_t first = number % inPlane * rows;
        rows = std::min(rows, page.height - std::min(first, page.height));
    }
    return (bits + 7) / 8 * rows;
}

} // namespace

void CheckExtraSamples(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const std::uint64_t colours = ColoursOf(page);
    const std::uint64_t extras = page.extraKinds.size();
    const std::string found =
        Counted(extras, "sample", "samples") + " of " + std::to_string(page.channels) + " channels";
    if (colours != 0 && page.channels < colours)
        Add(findings, page, "SamplesPerPixel", std::to_string(page.channels),
            "at least " + std::to_string(colours) + " for this photometric kind",
            "correct the photometric kind, or the number of channels");
    else if (colours != 0 && page.channels - colours != extras)
        Add(findings, page, "ExtraSamples", found,
            std::to_string(page.channels - colours) + ", all channels but the " +
                Counted(colours, "colour", "colours"),
            page.IsSeparated() ? "tell what each further channel is: InkSet 2 and InkNames for an "
                                 "ink, ExtraSamples for anything else"
                               : "tell by ExtraSamples what each further channel is");
    else if (extras > page.channels)
        Add(findings, page, "ExtraSamples", found, "no more than there are channels",
            "correct the tag");
    if (std::any_of(page.extraKinds.begin(), page.extraKinds.end(),
                    [](std::uint64_t kind) { return kind > EXTRASAMPLE_UNASSALPHA; }))
        Add(findings, page, "ExtraSamples", "a kind above 2",
            "0 for unspecified, 1 and 2 for alpha", "correct the tag");
}

void CheckProfile(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const RawTag* const tag = page.Find(TIFFTAG_ICCPROFILE);
    if (tag == nullptr)
        return;
    const ProfileHeader header = ReadProfileHeader(page.file->Bytes(*tag, mostProfileBytes));
    const std::string advice = "embed the profile of these inks again";
    if (!header.sound) {
        Add(findings, page, "ICCProfile", Counted(tag->count, "byte", "bytes") + " of no profile",
            "an ICC profile", advice);
        return;
    }
    if (header.declaredBytes != tag->ValueBytes())
        Add(findings, page, "ICCProfile", Counted(tag->ValueBytes(), "byte", "bytes"),
            std::to_string(header.declaredBytes) + ", as the profile says of itself", advice);
    const std::uint64_t inks = page.IsSeparated()                        ? page.CountInks()
                               : page.photometric == PHOTOMETRIC_PALETTE ? 3
                                                                         : ColoursOf(page);
    const auto channels = static_cast<std::uint64_t>(header.channels);
    if (channels != 0 && inks != 0 && channels != inks)
        Add(findings, page, "ICCProfile",
            header.colourSpace + " of " + Counted(channels, "channel", "channels"),
            Counted(inks, "channel", "channels") + ", as the picture has", advice);
}

void CheckResolution(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const bool across = page.Find(TIFFTAG_XRESOLUTION) != nullptr;
    const bool down = page.Find(TIFFTAG_YRESOLUTION) != nullptr;
    const std::uint64_t unit = page.Number(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (!across || !down)
        Add(findings, page, across ? "YResolution" : "XResolution", "none", "pixels an inch or cm",
            "set the resolution that the picture was made for");
    else if (unit < RESUNIT_INCH || unit > RESUNIT_CENTIMETER)
        Add(findings, page, "ResolutionUnit", std::to_string(unit), "2 for inches, or 3 for cm",
            "set the unit that the resolution is meant in");
}

void CheckSquarePixels(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const double across = Dpi(page, TIFFTAG_XRESOLUTION);
    const double down = Dpi(page, TIFFTAG_YRESOLUTION);
    if (across > 0 && down > 0 && across != down)
        Add(findings, page, "YResolution",
            NumberWords(down) + " dpi, and " + NumberWords(across) + " across",
            "the same in both directions", "ignore this where the printer has such pixels");
}

void CheckLikelihood(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    for (const auto& [tag, name] :
         {std::pair<std::uint16_t, const char*>{TIFFTAG_XRESOLUTION, "XResolution"},
          {TIFFTAG_YRESOLUTION, "YResolution"}}) {
        const double dpi = Dpi(page, tag);
        const bool measured = page.Find(tag) != nullptr &&
                              page.Number(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) != RESUNIT_NONE;
        // Written so that what is no number is found too.
        if (measured && !(dpi >= leastDpi && dpi <= mostDpi))
            Add(findings, page, name, NumberWords(dpi) + " dpi",
                NumberWords(leastDpi) + " to " + NumberWords(mostDpi) + " dpi",
                "set the resolution that the picture was made for");
    }
}

void CheckOrientation(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const std::uint64_t orientation = page.Number(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    if (orientation != ORIENTATION_TOPLEFT)
        Add(findings, page, "Orientation", OrientationWords(orientation),
            "1, for pages that stand as they are stored",
            "have the program that made the page write it upright: many others never look at the "
            "tag; pelkraft preview shows the page turned, and convert --mirror and --flip turn the "
            "stored pixels and keep the tag");
}

void CheckTruncation(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const RawTiff& file = *page.file;
    const std::string advice = "get the whole file again from where it was made";
    const std::string size = "within the " + std::to_string(file.Size()) + " bytes of the file";
    for (const RawTag& tag : page.tags) {
        if (!file.Holds(tag))
            Add(findings, page, TagName(tag.tag).c_str(),
                "values up to byte " + std::to_string(tag.offset) + " and beyond the end", size,
                advice);
    }
    const Blocks blocks = BlocksOf(page);
    if (blocks.offsets == nullptr || blocks.counts == nullptr) {
        Add(findings, page, blocks.tiled ? "TileByteCounts" : "StripOffsets",
            "no places or sizes of the samples", "both for each strip or tile", advice);
        return;
    }
    if (blocks.offsets->count < blocks.wanted || blocks.counts->count < blocks.wanted)
        Add(findings, page, TagName(blocks.offsets->tag).c_str(),
            Counted(std::min(blocks.offsets->count, blocks.counts->count), blocks.Name(),
                    blocks.Name() + "s"),
            std::to_string(blocks.wanted) + ", as the size of the picture asks for", advice);
    const std::vector<std::uint64_t> places = file.Numbers(
        *blocks.offsets, static_cast<std::size_t>(std::min(blocks.wanted, mostBlocks)));
    std::uint64_t number = 0;
    file.ForEachNumber(*blocks.counts, [&](std::uint64_t bytes) {
        if (number >= places.size())
            return false;
        const std::uint64_t place = places[number++];
        if (place <= file.Size() && bytes <= file.Size() - place)
            return true;
        Add(findings, page, TagName(blocks.counts->tag).c_str(),
            blocks.Name() + ' ' + std::to_string(number) + " of " + std::to_string(places.size()) +
                " with " + std::to_string(bytes) + " bytes from byte " + std::to_string(place),
            size, advice);
        return false;
    });
}

void CheckByteCounts(const CheckedPage& page, const CheckedPage&, CheckFindings& findings)
{
    const Blocks blocks = BlocksOf(page);
    if (page.compression != COMPRESSION_NONE || blocks.counts == nullptr ||
        page.photometric == PHOTOMETRIC_YCBCR)
        return;
    std::uint64_t number = 0;
    page.file->ForEachNumber(*blocks.counts, [&](std::uint64_t bytes) {
        const std::uint64_t wanted = PlainBytes(page, blocks, number++);
        if (number > blocks.wanted || bytes >= wanted)
            return number < blocks.wanted;
        Add(findings, page, TagName(blocks.counts->tag).c_str(),
            std::to_string(bytes) + " for " + blocks.Name() + ' ' + std::to_string(number),
            std::to_string(wanted) + ", since it is not compressed",
            "write the file anew with the program that made it");
        return false;
    });
}

} // namespace zvk::Pelkraft::Client
