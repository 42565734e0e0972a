#include "tools/pelkraft/share_plot.h"

#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/ink_colours.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace zvk::Pelkraft::Client {
namespace {

constexpr int margin = 24;
constexpr int labelWidth = 220;
constexpr int barWidth = 640;
constexpr int barHeight = 13;
constexpr int inkHeight = 2 * barHeight + 9;
constexpr int headHeight = 34;
constexpr int titleHeight = 66;
constexpr int pageWidth = 2 * margin + labelWidth + barWidth;
// Narrower pieces hold no number.
constexpr double narrowest = 34;

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char letter : Shown(text)) {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '&')
            escaped += "&amp;";
        else if (letter == '<')
            escaped += "&lt;";
        else if (letter == '>')
            escaped += "&gt;";
        else if (letter == '"')
            escaped += "&quot;";
        else
            // Names may hold bytes in any code page, of which XML knows nothing.
            escaped += code < 0x80 ? letter : '?';
    }
    return escaped;
}

std::string Number(double number)
{
    char words[32];
    std::snprintf(words, sizeof words, "%.2f", number);
    return words;
}

ScreenColour OnPaper(const ScreenColour& ink, int value)
{
    ScreenColour mixed = {};
    for (std::size_t i = 0; i < mixed.size(); ++i)
        mixed[i] = static_cast<std::uint8_t>(255 - (255 - ink[i]) * value / 255);
    return mixed;
}

class Plot
{
public:
    Plot(const PatternOutline& outline, const std::vector<StepShares>& newShares)
        : inColours(outline.InColourList()), outInks(outline.OutInkList()), shares(newShares)
    {}

    std::string Draw(const std::string& title)
    {
        Text(margin, 30, 17, "Ink values of " + title);
        Text(margin, 50, 12,
             "upper bar: as the pattern says; lower bar: as measured over its field");
        int inColour = -1;
        for (const StepShares& step : shares) {
            if (step.inColour != inColour)
                DrawHead(step.inColour);
            inColour = step.inColour;
            for (std::size_t i = 0; i < step.inks.size(); ++i)
                DrawInk(step, step.inks[i], i == 0);
        }
        const std::string width = std::to_string(pageWidth);
        const std::string height = std::to_string(y + margin);
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
               width + "\" height=\"" + height + "\" viewBox=\"0 0 " + width + " " + height +
               "\" font-family=\"sans-serif\">\n<rect width=\"100%\" height=\"100%\" "
               "fill=\"#ffffff\"/>\n" +
               body + "</svg>\n";
    }

private:
    void Text(int x, int baseline, int size, const std::string& words)
    {
        body += "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(baseline) +
                "\" font-size=\"" + std::to_string(size) + "\">" + Escaped(words) + "</text>\n";
    }

    void DrawHead(int inColour)
    {
        Text(margin, y + 22, 14, inColours[static_cast<std::size_t>(inColour)]);
        y += headHeight;
    }

    void DrawInk(const StepShares& step, const InkShares& ink, bool first)
    {
        if (first)
            Text(margin + 8, y + barHeight, 12, "step " + std::to_string(step.step));
        const std::string& name = outInks[static_cast<std::size_t>(ink.outInk)];
        Text(margin + 72, y + barHeight, 12, name);
        const ScreenColour colour = ColourOfInk(name, {});
        double expectedStart = 0;
        double measuredStart = 0;
        for (const ValueShare& share : ink.values) {
            const std::string told = inColours[static_cast<std::size_t>(step.inColour)] + " step " +
                                     std::to_string(step.step) + ": " + name + " " +
                                     std::to_string(share.value) + ", expected " +
                                     Number(100 * share.expected) + " %, measured " +
                                     Number(100 * share.measured) + " %";
            body += "<g><title>" + Escaped(told) + "</title>\n";
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
        const ScreenColour fill = OnPaper(ink, value);
        const double x = margin + labelWidth + barWidth * start;
        const double width = barWidth * share;
        body += "<rect x=\"" + Number(x) + "\" y=\"" + std::to_string(top) + "\" width=\"" +
                Number(width) + "\" height=\"" + std::to_string(barHeight) + "\" fill=\"" +
                HexWords(fill) + "\" stroke=\"#606060\" stroke-width=\"0.5\"/>\n";
        if (width < narrowest)
            return;
        const bool dark = 3 * fill[0] + 6 * fill[1] + fill[2] < 1200;
        body += "<text x=\"" + Number(x + 3) + "\" y=\"" + std::to_string(top + 10) +
                "\" font-size=\"9\" fill=\"" + (dark ? "#ffffff" : "#000000") + "\">" +
                std::to_string(value) + (width < 2 * narrowest ? "" : ": " + Percent(share)) +
                "</text>\n";
    }

    static std::string Percent(double share) { return Number(100 * share) + " %"; }

    std::vector<std::string> inColours;
    std::vector<std::string> outInks;
    const std::vector<StepShares>& shares;
    std::string body;
    int y = titleHeight;
};

} // namespace

std::string DrawShares(const std::string& title, const PatternOutline& outline,
                       const std::vector<StepShares>& shares)
{
    return Plot(outline, shares).Draw(title);
}

} // namespace zvk::Pelkraft::Client
