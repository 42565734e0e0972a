#include "tools/pelkraft/pattern_curves.h"

#include "tools/pelkraft/ink_colours.h"
#include "tools/pelkraft/value_shades.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int titleHeight = 34;
constexpr int areaHeight = 150;
constexpr int footHeight = 28;
constexpr int legendRow = 16;
constexpr int legendLine = 24;
constexpr const char* gridColour = "#c0c0c0";
constexpr const char* sumColour = "#606060";

struct Point
{
    double x = 0;
    double y = 0;
};

// An area with two axes, each from 0.
class Area
{
public:
    Area(const CurvePlace& newPlace, double newHighestX, double newHighestY)
        : place(newPlace), highestX(newHighestX), highestY(newHighestY)
    {}

    double X(double x) const { return place.left + place.width * x / highestX; }
    double Y(double y) const { return titleHeight + areaHeight * (1 - y / highestY); }

    void Title(const std::string& words) { body += SvgText(place.legendLeft, 22, 13, words); }

    void Row(double y, const std::string& label)
    {
        body += SvgLine(place.left, Y(y), place.left + place.width, Y(y), gridColour);
        body += SvgText(place.left - 46, Y(y) + 4, 10, label);
    }

    void Column(double x, const std::string& label)
    {
        body += SvgLine(X(x), titleHeight, X(x), titleHeight + areaHeight, gridColour);
        body += SvgText(X(x) - 4, titleHeight + areaHeight + 14, 10, label);
    }

    void Curve(const std::vector<Point>& points, const std::string& colour)
    {
        std::string places;
        for (const Point& point : points) {
            if (!places.empty())
                places += ' ';
            places.append(SvgNumber(X(point.x))).append(",").append(SvgNumber(Y(point.y)));
        }
        Stroke(places, colour);
    }

    // One line of the legend, left of the area.
    void Name(const std::string& name, const std::string& colour)
    {
        const double y = titleHeight + legendRow * (0.5 + names++);
        const std::string height = SvgNumber(y);
        Stroke(SvgNumber(place.legendLeft) + "," + height + " " +
                   SvgNumber(place.legendLeft + legendLine) + "," + height,
               colour);
        body += SvgText(place.legendLeft + legendLine + 8, y + 4, 12, name);
    }

    void Dot(const Point& point, const std::string& colour, const std::string& told)
    {
        body += "<g><title>" + SvgEscaped(told) + "</title>\n<circle cx=\"" +
                SvgNumber(X(point.x)) + "\" cy=\"" + SvgNumber(Y(point.y)) + "\" r=\"3\" fill=\"" +
                colour + "\" stroke=\"" + sumColour + "\" stroke-width=\"0.5\"/>\n</g>\n";
    }

    SvgPart Finish()
    {
        return {std::move(body),
                titleHeight + std::max(areaHeight, legendRow * names) + footHeight};
    }

private:
    // Pale colours stand out by their edge.
    void Stroke(const std::string& places, const std::string& colour)
    {
        for (const auto& [stroke, width] :
             {std::pair<std::string, const char*>{sumColour, "3"}, {colour, "2"}})
            body += "<polyline points=\"" + places + "\" fill=\"none\" stroke=\"" + stroke +
                    "\" stroke-width=\"" + width + "\"/>\n";
    }

    CurvePlace place;
    double highestX;
    double highestY;
    int names = 0;
    std::string body;
};

// The curves of an in-colour, by out-ink; that of all together has none, and counts a light ink as
// the dither does.
constexpr int allInks = -1;
using Curves = std::map<int, std::vector<MeanInk>>;

Curves CurvesOf(int inColour, const std::vector<std::string>& outInks,
                const std::vector<StepShares>& shares)
{
    const double unit = 100.0 / HighestValue(shares);
    Curves curves;
    for (const StepShares& step : shares) {
        if (step.inColour != inColour)
            continue;
        MeanInk sum;
        for (const InkShares& ink : step.inks) {
            const MeanInk mean = MeanOf(ink);
            curves[ink.outInk].push_back({unit * mean.expected, unit * mean.measured});
            const double counted =
                unit * StrengthOfInk(outInks[static_cast<std::size_t>(ink.outInk)]);
            sum.expected += counted * mean.expected;
            sum.measured += counted * mean.measured;
        }
        curves[allInks].push_back(sum);
    }
    if (curves.size() <= 2)
        curves.erase(allInks);
    return curves;
}

} // namespace

SvgPart DrawCoverage(const CurvePlace& place, int inColour, const std::string& name,
                     const std::vector<std::string>& outInks, const std::vector<StepShares>& shares)
{
    const Curves curves = CurvesOf(inColour, outInks, shares);
    double highest = 100;
    std::size_t steps = 2;
    for (const auto& [ink, means] : curves) {
        steps = std::max(steps, means.size());
        for (const MeanInk& mean : means)
            highest = std::max({highest, mean.expected, mean.measured});
    }
    Area area(place, static_cast<double>(steps - 1), std::ceil(highest / 100) * 100);
    const std::string allWords =
        curves.count(allInks) == 0 ? "" : "; in all inks a light one counts 0.4";
    area.Title(name + ": mean ink by step, in percent of full ink, value " +
               std::to_string(HighestValue(shares)) + "; dots as measured" + allWords);
    for (int row = 0; row <= std::ceil(highest / 100) * 100; row += 25)
        area.Row(row, std::to_string(row) + " %");
    for (std::size_t step = 0; step < steps; ++step)
        area.Column(static_cast<double>(step), std::to_string(step));
    for (const auto& [ink, means] : curves) {
        const bool isSum = ink == allInks;
        const std::string inkName = isSum ? "all inks" : outInks[static_cast<std::size_t>(ink)];
        const std::string colour = isSum ? sumColour : HexWords(ColourOfInk(inkName, {}));
        std::vector<Point> points;
        for (const MeanInk& mean : means)
            points.push_back({static_cast<double>(points.size()), mean.expected});
        area.Curve(points, colour);
        area.Name(inkName, colour);
        for (std::size_t step = 0; step < means.size(); ++step)
            area.Dot({static_cast<double>(step), means[step].measured}, colour,
                     name + " step " + std::to_string(step) + ": mean of " + inkName +
                         ", expected " + SvgNumber(means[step].expected) + " %, measured " +
                         SvgNumber(means[step].measured) + " %");
    }
    return area.Finish();
}

SvgPart DrawSpectrum(const CurvePlace& place, const FieldSpectrum& spectrum,
                     const std::string& name, const std::string& ink)
{
    const double highest =
        std::max(2.0, std::ceil(*std::max_element(spectrum.power.begin(), spectrum.power.end())));
    Area area(place, 0.5, highest);
    area.Title(name + " step " + std::to_string(spectrum.step) + ": power of the drops of " + ink +
               " by waves per pixel; white noise is 1");
    const double rows = std::max(1.0, std::floor(highest / 4));
    for (double row = 0; row <= highest; row += rows)
        area.Row(row, std::to_string(static_cast<int>(row)));
    for (int column = 0; column <= 5; ++column)
        area.Column(column / 10.0, SvgNumber(column / 10.0).substr(0, 3));
    std::vector<Point> points;
    for (std::size_t k = 1; k < spectrum.power.size(); ++k)
        points.push_back(
            {static_cast<double>(k) / static_cast<double>(spectrumSide), spectrum.power[k]});
    area.Curve(points, "#202020");
    return area.Finish();
}

} // namespace zvk::Pelkraft::Client
