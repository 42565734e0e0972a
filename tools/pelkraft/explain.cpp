#include "tools/pelkraft/explain.h"

#include "tools/pelkraft/page_rows.h"
#include "zvk/system_tools.h"

namespace zvk::Pelkraft::Client {
namespace {

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

std::string RoadWords(const PagePlan& plan, const ConvertOptions& options)
{
    const std::string level = std::to_string(SystemTools::GetSseVersion());
    if (!plan.request.portableRoad)
        return "vector, processor level " + level;
    return options.portable ? "portable, as asked for" : "portable, processor level " + level;
}

std::string TonesWords(const RowRequest& request)
{
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

} // namespace

std::string ExplainPage(const PagePlan& plan, const ConvertOptions& options, int page)
{
    std::string text = "page " + std::to_string(page) + "\n";
    text += Line("reads", PictureWords(plan.from));
    text += Line("row", plan.request.from.Words());
    int pass = 0;
    for (const RowStep& step : plan.steps) {
        const bool fill = step.kind == RowStep::Kind::Fill;
        text += Line(fill ? "pass " + std::to_string(++pass) : "client", step.Words());
        if (step.Moves())
            text += Line("row", step.to.Words());
    }
    text += Line("writes", PictureWords(plan.to));
    text += Line("road", RoadWords(plan, options));
    text += Line("tones", TonesWords(plan.request));
    text += Line("polarity", PhotometricName(plan.tags.photometric) +
                                 PolarityWords(plan.tags.photometric) +
                                 (plan.tags.photometric == plan.from.photometric ? ", kept" : ""));
    text += Line("bit order", BitOrderWords(plan));
    text += Line("work", "bands of " + std::to_string(BandRows(plan.from, plan.to)) + " rows on " +
                             std::to_string(options.threads) +
                             (options.threads == 1 ? " thread" : " threads"));
    return text;
}

} // namespace zvk::Pelkraft::Client
