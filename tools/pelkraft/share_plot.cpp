#include "tools/pelkraft/share_plot.h"

#include "tools/pelkraft/ink_colours.h"
#include "tools/pelkraft/pattern_curves.h"
#include "tools/pelkraft/value_shades.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int margin = 24;
constexpr int labelWidth = 220;
constexpr int barWidth = 640;
constexpr int barHeight = 13;
constexpr int inkHeight = 2 * barHeight + 9;
constexpr int headHeight = 34;
constexpr int titleHeight = 82;
constexpr int pageWidth = 2 * margin + labelWidth + barWidth;
// Narrower pieces hold no number.
constexpr double narrowest = 34;

class Plot
{
public:
    Plot(const PatternOutline& outline, const std::vector<StepShares>& newShares)
        : inColours(outline.InColourList()), outInks(outline.OutInkList()), shares(newShares),
          shades(newShares)
    {}

    SvgPart Draw(const std::string& title)
    {
        body += SvgText(margin, 30, 17, "Ink values of " + title);
        body += SvgText(margin, 50, 12,
                        "upper bar: as the pattern says; lower bar: as measured over its field");
        body += SvgText(margin, 66, 12, shades.Words());
        int inColour = -1;
        for (const StepShares& step : shares) {
            if (step.inColour != inColour)
                DrawHead(step.inColour);
            inColour = step.inColour;
            for (std::size_t i = 0; i < step.inks.size(); ++i)
                DrawInk(step, step.inks[i], i == 0);
        }
        return {std::move(body), y + margin};
    }

private:
    void DrawHead(int inColour)
    {
        body += SvgText(margin, y + 22, 14, inColours[static_cast<std::size_t>(inColour)]);
        y += headHeight;
    }

    void DrawInk(const StepShares& step, const InkShares& ink, bool first)
    {
        if (first)
            body += SvgText(margin + 8, y + barHeight, 12, "step " + std::to_string(step.step));
        const std::string& name = outInks[static_cast<std::size_t>(ink.outInk)];
        body += SvgText(margin + 72, y + barHeight, 12, name);
        const ScreenColour colour = ColourOfInk(name, {});
        double expectedStart = 0;
        double measuredStart = 0;
        for (const ValueShare& share : ink.values) {
            const std::string told = inColours[static_cast<std::size_t>(step.inColour)] + " step " +
                                     std::to_string(step.step) + ": " + name + " " +
                                     std::to_string(share.value) + ", expected " +
                                     SvgNumber(100 * share.expected) + " %, measured " +
                                     SvgNumber(100 * share.measured) + " %";
            body += "<g><title>" + SvgEscaped(told) + "</title>\n";
            DrawPiece(y, expectedStart, share.expected, share.value, colour);
            DrawPiece(y + barHeight, measuredStart, share.measured, share.value, colour);
            body += "</g>\n";
            expectedStart += share.expected;
            measuredStart += share.measured;
        }
        y += inkHeight;
    }

    // Mixed here: not every program that shows drawings knows of opacity.
    void DrawPiece(int top, double start, double share, int value, const ScreenColour& ink)
    {
        const ScreenColour fill = shades.Shade(ink, value);
        const double x = margin + labelWidth + barWidth * start;
        const double width = barWidth * share;
        body += "<rect x=\"" + SvgNumber(x) + "\" y=\"" + std::to_string(top) + "\" width=\"" +
                SvgNumber(width) + "\" height=\"" + std::to_string(barHeight) + "\" fill=\"" +
                HexWords(fill) + "\" stroke=\"#606060\" stroke-width=\"0.5\"/>\n";
        if (width < narrowest)
            return;
        const bool dark = 3 * fill[0] + 6 * fill[1] + fill[2] < 1200;
        body += "<text x=\"" + SvgNumber(x + 3) + "\" y=\"" + std::to_string(top + 10) +
                "\" font-size=\"9\" fill=\"" + (dark ? "#ffffff" : "#000000") + "\">" +
                std::to_string(value) + (width < 2 * narrowest ? "" : ": " + Percent(share)) +
                "</text>\n";
    }

    static std::string Percent(double share) { return SvgNumber(100 * share) + " %"; }

    std::vector<std::string> inColours;
    std::vector<std::string> outInks;
    const std::vector<StepShares>& shares;
    ValueShades shades;
    std::string body;
    int y = titleHeight;
};

} // namespace

void DrawPattern(SvgPage& page, const PatternPlot& plot)
{
    const std::vector<std::string> inColours = plot.outline.InColourList();
    const std::vector<std::string> outInks = plot.outline.OutInkList();
    const CurvePlace place = {margin + labelWidth, barWidth, margin};
    page.Add(Plot(plot.outline, plot.shares).Draw(plot.title));
    int inColour = -1;
    for (const StepShares& step : plot.shares) {
        if (step.inColour != inColour)
            page.Add(DrawCoverage(place, step.inColour,
                                  inColours[static_cast<std::size_t>(step.inColour)], outInks,
                                  plot.shares));
        inColour = step.inColour;
    }
    for (const FieldSpectrum& spectrum : plot.spectra)
        page.Add(DrawSpectrum(place, spectrum,
                              inColours[static_cast<std::size_t>(spectrum.inColour)],
                              outInks[static_cast<std::size_t>(spectrum.outInk)]));
}

SvgPage PatternPage()
{
    return SvgPage(pageWidth);
}

} // namespace zvk::Pelkraft::Client
