#include "tools/pelkraft/explain.h"

#include "tools/pelkraft/page_rows.h"

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* splitWords = "split contiguous bits into planes";
constexpr const char* linesWords = "map samples in a straight line";
constexpr const char* weaveWords = "weave planes into contiguous bits";

std::string Line(const std::string& label, const std::string& text)
{
    std::string line = "  " + label;
    line.resize(std::max<std::size_t>(line.size() + 1, 13), ' ');
    return line + text + "\n";
}

std::string PictureWords(const TiffPicture& picture)
{
    std::string words = std::to_string(picture.width) + " x " + std::to_string(picture.height) +
                        " pixels, " + std::to_string(picture.channels) + " x " +
                        std::to_string(picture.bits) + (picture.bits == 1 ? " bit" : " bits");
    words += picture.separate ? ", separate planes" : ", contiguous";
    words += picture.tiled ? ", tiles" : ", strips";
    return words + ", " + CompressionName(picture.compression);
}

std::string PolarityWords(std::uint16_t photometric)
{
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
        return ": 0 is white";
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_RGB:
        return ": 0 is black";
    case PHOTOMETRIC_SEPARATED:
        return ": 0 is no ink";
    default:
        return "";
    }
}

std::string TonesWords(const RowRequest& request)
{
    if (request.lines)
        return "mapped with the range of ink";
    if (request.from.bits == request.to.bits)
        return "untouched, the depth stays";
    if (request.from.bits >= 8 && request.to.bits >= 8)
        return "untouched, no depth below 8 bits";
    return request.tones == Tones::Scale ? "scale: tones and levels are turned into each other"
                                         : "raw: samples are taken as numbers";
}

std::string BitOrderWords(const PagePlan& plan)
{
    if (plan.from.bits >= 8 && plan.to.bits >= 8)
        return "whole bytes";
    const bool lowestFirst = plan.from.fillOrder == FILLORDER_LSB2MSB;
    const std::string words = lowestFirst ? "lowest bit first" : "highest bit first";
    return plan.to.bits < 8 ? words + " in the file, kept" : words + " in the file read";
}

std::string PolarityText(const PagePlan& plan)
{
    return PhotometricName(plan.tags.photometric) + PolarityWords(plan.tags.photometric) +
           (plan.tags.photometric == plan.from.photometric ? ", kept" : "");
}

std::string CodeWords(int old, int fresh)
{
    return old == fresh ? std::to_string(old)
                        : std::to_string(old) + " becomes " + std::to_string(fresh);
}

// Which samples stand for no ink and for full ink, and what is done to take them there.
std::string InkText(const InkRange& range)
{
    std::string words = "none is " + CodeWords(range.old.none, range.fresh.none) + ", all is " +
                        CodeWords(range.old.full, range.fresh.full);
    if (range.lines)
        return words + ", in a straight line, to the nearest, half up";
    return words + (range.invert ? ", each sample turned into the highest less it" : "");
}

Json InkJson(const InkRange& range)
{
    return {{"none", range.old.none},
            {"full", range.old.full},
            {"new_none", range.fresh.none},
            {"new_full", range.fresh.full},
            {"mapped", range.lines.has_value()},
            {"inverted", range.invert}};
}

// The library's own description of the conversion.
Json ReadDescription(const PagePlan& plan)
{
    return Json::parse(plan.rows.Conversion().Describe(PLK_JSON));
}

std::string BytesText(const Json& description)
{
    return "reads " + std::to_string(description["bytes_read"].get<std::uint64_t>()) +
           " bytes, writes " + std::to_string(description["bytes_written"].get<std::uint64_t>());
}

Json PictureJson(const TiffPicture& picture)
{
    return {{"width", picture.width},
            {"height", picture.height},
            {"channels", picture.channels},
            {"bits", picture.bits},
            {"layout", picture.separate ? "planar" : "interleaved"},
            {"tiles", picture.tiled},
            {"compression", CompressionName(picture.compression)}};
}

} // namespace

std::string ExplainPage(const PagePlan& plan, const ConvertOptions& options)
{
    const RowRequest& request = plan.rows.Request();
    const Json description = ReadDescription(plan);
    std::string text = "\n";
    text += Line("reads", PictureWords(plan.from));
    text += Line("row", request.from.Words());
    if (request.from.woven)
        text += Line("client", splitWords) + Line("row", plan.rows.LinesSource().Words());
    if (request.lines)
        text += Line("client", linesWords) + Line("row", plan.rows.LibrarySource().Words());
    for (const Json& step : description["steps"])
        text += Line("library", step.get<std::string>());
    if (request.to.woven)
        text += Line("row", plan.rows.LibraryTarget().Words()) + Line("client", weaveWords);
    text += Line("row", request.to.Words());
    text += Line("writes", PictureWords(plan.to));
    text += Line("road", description["road"].get<std::string>() + ", " +
                             description["level"].get<std::string>());
    text += Line("traffic", BytesText(description) + " for each row");
    text += Line("tones", TonesWords(request));
    text += Line("polarity", PolarityText(plan));
    text += Line("ink", InkText(plan.range));
    if (options.flip)
        text += Line("rows", "from the last to the first");
    text += Line("bit order", BitOrderWords(plan));
    text += Line("work", "bands of " + std::to_string(BandRows(plan.from, plan.to)) + " rows on " +
                             std::to_string(options.common.threads) +
                             (options.common.threads == 1 ? " thread" : " threads"));
    return text;
}

std::string ChoiceOf(const PagePlan& plan)
{
    const Json description = ReadDescription(plan);
    return description["road"].get<std::string>() +
           " road of the library; ink: " + InkText(plan.range);
}

Json ExplainPageJson(const PagePlan& plan, const ConvertOptions& options, int page)
{
    const RowRequest& request = plan.rows.Request();
    Json json;
    json["page"] = page;
    json["reads"] = PictureJson(plan.from);
    json["writes"] = PictureJson(plan.to);
    json["client"] = Json::array();
    if (request.from.woven)
        json["client"].push_back(splitWords);
    if (request.lines)
        json["client"].push_back(linesWords);
    if (request.to.woven)
        json["client"].push_back(weaveWords);
    json["library"] = ReadDescription(plan);
    json["tones"] = TonesWords(request);
    json["polarity"] = PolarityText(plan);
    json["ink"] = InkJson(plan.range);
    json["flip"] = options.flip;
    json["bit_order"] = BitOrderWords(plan);
    json["band_rows"] = BandRows(plan.from, plan.to);
    json["threads"] = options.common.threads;
    return json;
}

} // namespace zvk::Pelkraft::Client
