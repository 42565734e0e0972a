#include "tools/pelkraft/info_report.h"

#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/input_file.h"
#include "tools/pelkraft/page_orientation.h"

#include <algorithm>
#include <cstdio>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double mmPerMetre = 1000;
// Longer names push the columns after them.
constexpr std::size_t nameColumn = 18;

std::string Line(const std::string& label, const std::string& text)
{
    std::string line = "  " + label;
    line.resize(std::max<std::size_t>(line.size() + 1, 14), ' ');
    return line + text + '\n';
}

std::string FormName(const FileFacts& file)
{
    return std::string(file.bigForm ? "BigTIFF" : "TIFF") + ", " +
           (file.bigEndian ? "big-endian" : "little-endian");
}

// Tenths of a millimetre.
std::string MmWords(double mm)
{
    char text[64];
    std::snprintf(text, sizeof text, mm < mmPerMetre ? "%.1f" : "%.0f", mm);
    return text;
}

std::string SizeWords(const PageFacts& facts)
{
    const TiffPicture& picture = facts.picture;
    std::string words =
        std::to_string(picture.width) + " x " + std::to_string(picture.height) + " pixels, ";
    if (facts.resolution.HasLength())
        words += MmWords(picture.width / facts.resolution.PixelsPerMmAcross()) + " x " +
                 MmWords(picture.height / facts.resolution.PixelsPerMmDown()) + " mm at ";
    return words + facts.resolution.Words();
}

std::string SampleWords(const PageFacts& facts)
{
    const TiffPicture& picture = facts.picture;
    std::string words = std::to_string(picture.channels) + " x " + std::to_string(picture.bits) +
                        (picture.bits == 1 ? " bit, " : " bits, ");
    if (facts.sampleKind != "unsigned")
        words += facts.sampleKind + ", ";
    words += picture.separate ? "separate planes, " : "contiguous, ";
    words += picture.tiled
                 ? "tiles of " + std::to_string(picture.tileWidth) + " x " +
                       std::to_string(picture.tileLength) + " pixels, "
                 : "strips of " +
                       Counted(std::min(picture.rowsPerStrip, picture.height), "row", "rows") +
                       ", ";
    return words + CompressionName(picture.compression);
}

std::string KindWords(const PageFacts& facts)
{
    std::string words = PhotometricName(facts.picture.photometric);
    if (facts.inkSet)
        words += ", ink set " + std::to_string(*facts.inkSet) +
                 (*facts.inkSet == INKSET_CMYK ? " (CMYK)" : "");
    if (!facts.codesFault.empty())
        words += "; " + facts.codesFault;
    return words;
}

std::string ProfileWords(const ProfileHeader& profile)
{
    const std::string bytes = Counted(profile.presentBytes, "byte", "bytes");
    if (!profile.sound)
        return bytes + ", which are no ICC profile";
    return '"' + Shown(profile.description) + "\", " + Shown(profile.colourSpace) + ", class " +
           Shown(profile.profileClass) + ", version " + profile.version + ", " + bytes;
}

const char* PolarityName(const InkCodes& codes)
{
    return codes.InkIsHigh() ? "ink-high" : "ink-low";
}

std::string Cell(const std::string& text, std::size_t width)
{
    return ' ' + PaddedLeft(text, width);
}

std::string StatisticsCells(const ChannelStatistics& statistics, bool hasCodes)
{
    char mean[64];
    std::snprintf(mean, sizeof mean, "%.3f", statistics.Mean());
    char used[64];
    std::snprintf(used, sizeof used, "%.2f %%", 100 * statistics.UsedShare());
    return Cell(std::to_string(statistics.lowest), 7) +
           Cell(std::to_string(statistics.highest), 7) + Cell(mean, 10) +
           Cell(hasCodes ? used : "-", 9);
}

std::string ChannelLine(const PageFacts& facts, std::size_t index)
{
    const Channel& channel = facts.channels[index];
    std::string line = PaddedRight(channel.name.empty() ? "-" : Shown(channel.name), nameColumn);
    if (!channel.ink)
        line += Cell(channel.IsAlpha() ? "alpha" : "extra", 9) + Cell("-", 6) + Cell("-", 6);
    else if (!facts.codes.empty())
        line += Cell(PolarityName(facts.codes[index]), 9) +
                Cell(std::to_string(facts.codes[index].none), 6) +
                Cell(std::to_string(facts.codes[index].full), 6);
    else
        line += Cell("-", 9) + Cell("-", 6) + Cell("-", 6);
    if (!facts.statistics.empty())
        line += StatisticsCells(facts.statistics[index], !facts.codes.empty());
    return Line("channel " + std::to_string(index), line);
}

std::string ChannelHeading(bool statistics)
{
    std::string line = PaddedRight("name", nameColumn);
    line += Cell("polarity", 9) + Cell("0 %", 6) + Cell("100 %", 6);
    if (statistics)
        line += Cell("lowest", 7) + Cell("highest", 7) + Cell("mean", 10) + Cell("used", 9);
    return Line("", line);
}

std::string PageWords(const PageFacts& facts)
{
    std::string text = "page " + std::to_string(facts.page) + '\n';
    text += Line("size", SizeWords(facts)) + Line("samples", SampleWords(facts)) +
            Line("kind", KindWords(facts));
    if (facts.orientation != ORIENTATION_TOPLEFT)
        text += Line("orientation", OrientationWords(facts.orientation));
    if (facts.profile)
        text += Line("profile", ProfileWords(*facts.profile));
    text += ChannelHeading(!facts.statistics.empty());
    for (std::size_t channel = 0; channel < facts.channels.size(); ++channel)
        text += ChannelLine(facts, channel);
    return text;
}

Json ResolutionJson(const PageResolution& resolution)
{
    if (resolution.horizontal == 0 && resolution.vertical == 0)
        return nullptr;
    const char* const unit = resolution.unit == RESUNIT_INCH         ? "inch"
                             : resolution.unit == RESUNIT_CENTIMETER ? "cm"
                                                                     : "none";
    return {
        {"horizontal", resolution.horizontal}, {"vertical", resolution.vertical}, {"unit", unit}};
}

Json ProfileJson(const std::optional<ProfileHeader>& profile)
{
    if (!profile)
        return nullptr;
    Json json = {{"bytes", profile->presentBytes}, {"sound", profile->sound}};
    if (!profile->sound)
        return json;
    json["description"] = profile->description;
    json["colour_space"] = profile->colourSpace;
    json["channels"] = profile->channels;
    json["class"] = profile->profileClass;
    json["version"] = profile->version;
    return json;
}

Json ChannelJson(const PageFacts& facts, std::size_t index)
{
    const Channel& channel = facts.channels[index];
    Json json = {
        {"channel", index}, {"name", channel.name}, {"extra", channel.extra}, {"ink", channel.ink}};
    if (!facts.codes.empty() && channel.ink) {
        json["polarity"] = PolarityName(facts.codes[index]);
        json["code_0"] = facts.codes[index].none;
        json["code_100"] = facts.codes[index].full;
    }
    if (facts.statistics.empty())
        return json;
    const ChannelStatistics& counted = facts.statistics[index];
    json["lowest"] = counted.lowest;
    json["highest"] = counted.highest;
    json["sum"] = counted.sum;
    json["mean"] = counted.Mean();
    if (!facts.codes.empty())
        json["used"] = counted.UsedShare();
    return json;
}

Json PageJson(const PageFacts& facts)
{
    const TiffPicture& picture = facts.picture;
    Json json = {{"page", facts.page}, {"width", picture.width}, {"height", picture.height}};
    if (facts.resolution.HasLength()) {
        json["width_mm"] = picture.width / facts.resolution.PixelsPerMmAcross();
        json["height_mm"] = picture.height / facts.resolution.PixelsPerMmDown();
    }
    json["resolution"] = ResolutionJson(facts.resolution);
    json["orientation"] = facts.orientation;
    json["channels"] = picture.channels;
    json["bits"] = picture.bits;
    json["samples"] = facts.sampleKind;
    json["layout"] = picture.separate ? "planar" : "interleaved";
    json["tiles"] = picture.tiled;
    json["compression"] = CompressionName(picture.compression);
    json["photometric"] = PhotometricName(picture.photometric);
    json["ink_set"] = facts.inkSet ? Json(*facts.inkSet) : Json(nullptr);
    if (!facts.codesFault.empty())
        json["fault"] = facts.codesFault;
    json["profile"] = ProfileJson(facts.profile);
    json["inks"] = Json::array();
    for (std::size_t channel = 0; channel < facts.channels.size(); ++channel)
        json["inks"].push_back(ChannelJson(facts, channel));
    return json;
}

} // namespace

std::string InfoWords(const FileFacts& file)
{
    std::string text = Shown(InputName(file.path)) + ": " + FormName(file) + ", " +
                       Counted(file.bytes, "byte", "bytes") + ", " +
                       Counted(file.pages.size(), "page", "pages") + "\n";
    for (const PageFacts& page : file.pages)
        text += PageWords(page);
    return text;
}

Json InfoJson(const FileFacts& file)
{
    Json json = {{"file", file.path},
                 {"form", file.bigForm ? "BigTIFF" : "TIFF"},
                 {"byte_order", file.bigEndian ? "big-endian" : "little-endian"},
                 {"bytes", file.bytes},
                 {"pages", Json::array()}};
    for (const PageFacts& page : file.pages)
        json["pages"].push_back(PageJson(page));
    return json;
}

} // namespace zvk::Pelkraft::Client
