#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/field_spectra.h"
#include "tools/pelkraft/json.h"
#include "tools/pelkraft/pattern_diff.h"
#include "tools/pelkraft/pattern_fix.h"
#include "tools/pelkraft/pattern_report.h"
#include "tools/pelkraft/pattern_sarif.h"
#include "tools/pelkraft/share_plot.h"
#include "web/page/module/answer.h"
#include "web/page/module/reading.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Page {
namespace {

using Client::Json;
using Client::PatternReport;
using Client::PatternText;

Json SpectraJson(const Client::PatternOutline& outline,
                 const std::vector<Client::FieldSpectrum>& spectra)
{
    const std::vector<std::string> inColours = outline.InColourList();
    const std::vector<std::string> outInks = outline.OutInkList();
    Json json = Json::array();
    for (const Client::FieldSpectrum& spectrum : spectra)
        json.push_back({{"inColour", inColours[static_cast<std::size_t>(spectrum.inColour)]},
                        {"step", spectrum.step},
                        {"ink", outInks[static_cast<std::size_t>(spectrum.outInk)]},
                        {"power", spectrum.power}});
    return json;
}

std::string Plotted(const PatternReport& report)
{
    std::string refusal;
    const auto pattern = Client::TryDrawingPattern(report.text, refusal);
    if (pattern == nullptr)
        throw Client::Failure(Client::ExitCode::BadPattern, {},
                              "The pattern can't be drawn: " + refusal);
    const auto shares = Client::MeasureShares(report.outline, report.model, pattern.get());
    const auto spectra = Client::MeasureSpectra(report.text, shares);
    Client::SvgPage page = Client::PatternPage();
    Client::DrawPattern(page, {report.text.Path(), report.outline, shares, spectra});
    return R"({"report":)" + Client::PatternJson(report, shares) + R"(,"places":)" +
           PlacesJson(report) + R"(,"spectra":)" +
           Client::JsonText(SpectraJson(report.outline, spectra)) + R"(,"svg":)" +
           Client::JsonText(page.Finish()) + "}";
}

} // namespace

// Nothing is measured, which would take too long for an editor.
PELKRAFT_FOR_PAGE(read_text) ReadText(const char* text, std::size_t bytes)
{
    return Answer([=] {
        const PatternText read("pattern", std::string(text, bytes));
        const PatternReport report(read);
        const auto shares = Client::MeasureShares(report.outline, report.model, nullptr);
        return R"({"report":)" + Client::PatternJson(report, shares) + R"(,"places":)" +
               PlacesJson(report) + "}";
    });
}

PELKRAFT_FOR_PAGE(plot_text)
PlotText(const char* text, std::size_t bytes, const char* title, std::size_t titleBytes)
{
    return Answer([=] {
        const PatternText read(std::string(title, titleBytes), std::string(text, bytes));
        return Plotted(PatternReport(read));
    });
}

PELKRAFT_FOR_PAGE(compare_texts)
CompareTexts(const char* left, std::size_t leftBytes, const char* right, std::size_t rightBytes)
{
    return Answer([=] {
        const PatternText leftText("left", std::string(left, leftBytes));
        const PatternText rightText("right", std::string(right, rightBytes));
        return Client::DifferenceJson(
            Client::CompareReports(PatternReport(leftText), PatternReport(rightText)),
            leftText.Path(), rightText.Path());
    });
}

PELKRAFT_FOR_PAGE(fix_text) FixText(const char* text, std::size_t bytes)
{
    return Answer([=] {
        const Client::FixedText fixed =
            Client::FixPattern(PatternText("pattern", std::string(text, bytes)));
        return Client::JsonText(
            {{"text", fixed.bytes}, {"changes", fixed.changes}, {"isGivenUp", fixed.isGivenUp}});
    });
}

PELKRAFT_FOR_PAGE(log_text)
LogText(const char* text, std::size_t bytes, const char* file, std::size_t fileBytes)
{
    return Answer([=] {
        const PatternText read(std::string(file, fileBytes), std::string(text, bytes));
        const PatternReport report(read);
        return Client::PatternSarif({&report}, report.Code());
    });
}

} // namespace zvk::Pelkraft::Page
