#include "tools/pelkraft/svg_parts.h"

#include "tools/pelkraft/findings.h"

#include <cstdio>

namespace zvk::Pelkraft::Client {

std::string SvgEscaped(const std::string& text)
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

std::string SvgNumber(double number)
{
    char words[32];
    std::snprintf(words, sizeof words, "%.2f", number);
    return words;
}

std::string SvgText(double x, double baseline, int size, const std::string& words)
{
    return "<text x=\"" + SvgNumber(x) + "\" y=\"" + SvgNumber(baseline) + "\" font-size=\"" +
           std::to_string(size) + "\">" + SvgEscaped(words) + "</text>\n";
}

std::string SvgLine(double x1, double y1, double x2, double y2, const std::string& colour)
{
    return "<line x1=\"" + SvgNumber(x1) + "\" y1=\"" + SvgNumber(y1) + "\" x2=\"" + SvgNumber(x2) +
           "\" y2=\"" + SvgNumber(y2) + "\" stroke=\"" + colour + "\" stroke-width=\"0.5\"/>\n";
}

void SvgPage::Add(const SvgPart& part)
{
    body +=
        "<g transform=\"translate(0," + std::to_string(height) + ")\">\n" + part.body + "</g>\n";
    height += part.height;
}

std::string SvgPage::Finish() const
{
    const std::string size = std::to_string(width) + " " + std::to_string(height);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
           std::to_string(width) + "\" height=\"" + std::to_string(height) + "\" viewBox=\"0 0 " +
           size +
           "\" font-family=\"sans-serif\">\n<rect width=\"100%\" height=\"100%\" "
           "fill=\"#ffffff\"/>\n" +
           body + "</svg>\n";
}

} // namespace zvk::Pelkraft::Client
