#include "tools/pelkraft/coverage_report.h"

#include "tools/pelkraft/findings.h"

#include <cstdio>

namespace zvk::Pelkraft::Client {
namespace {

// Longer names push the columns after them.
constexpr std::size_t nameColumn = 24;

double Percent(std::uint64_t sum, std::uint64_t pixels, const CoveragePlan& plan)
{
    return 100 * static_cast<double>(sum) /
           (static_cast<double>(pixels) * static_cast<double>(plan.Full()));
}

std::string Fixed(double number)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", number);
    return text;
}

std::string Row(const std::string& name, const std::string& mean, const std::string& largest)
{
    const std::string row = PaddedRight("  " + name + ' ', nameColumn);
    char cells[160];
    std::snprintf(cells, sizeof cells, "%10s %10s\n", mean.c_str(), largest.c_str());
    return row + cells;
}

std::string PlaceWords(const LargestSum& place)
{
    return "x " + std::to_string(place.x) + ", y " + std::to_string(place.y);
}

std::uint64_t PixelsOf(const WindowShape& window)
{
    return static_cast<std::uint64_t>(window.width) * static_cast<std::uint64_t>(window.height);
}

std::string WindowWords(const CoveragePlan& plan, const PageCoverage& found)
{
    if (!plan.window)
        return "no window: the page has no resolution; --window 40px gives its size\n";
    return Fixed(Percent(found.window.sum, PixelsOf(*plan.window), plan)) + " % in the window of " +
           std::to_string(plan.window->width) + " x " + std::to_string(plan.window->height) +
           " pixels from " + PlaceWords(found.window) + " on\n";
}

} // namespace

std::string CoverageWords(const CoveragePlan& plan, const PageCoverage& found, int page,
                          std::uint64_t limit)
{
    const double above =
        100 * static_cast<double>(found.pixelsAbove) / static_cast<double>(plan.Pixels());
    std::string text = "page " + std::to_string(page) + '\n' + Row("ink", "mean %", "maximum %");
    for (std::size_t ink = 0; ink < plan.inks.size(); ++ink)
        text += Row(Shown(plan.inks[ink].name),
                    Fixed(Percent(found.inks[ink].sum, plan.Pixels(), plan)),
                    Fixed(Percent(found.inks[ink].largest, 1, plan)));
    text += Row("all inks", Fixed(Percent(found.sum, plan.Pixels(), plan)),
                Fixed(Percent(found.largest.sum, 1, plan)));
    text += "  maximum at " + PlaceWords(found.largest) + '\n';
    text += "  above " + NumberWords(static_cast<double>(limit) / 1000) +
            " %: " + Counted(found.pixelsAbove, "pixel", "pixels") + ", " + Fixed(above) + " %\n";
    return text + "  most ink: " + WindowWords(plan, found);
}

Json CoverageJson(const CoveragePlan& plan, const PageCoverage& found, int page)
{
    Json json = {{"page", page},
                 {"width", plan.picture.width},
                 {"height", plan.picture.height},
                 {"full", plan.Full()},
                 {"inks", Json::array()}};
    for (std::size_t ink = 0; ink < plan.inks.size(); ++ink)
        json["inks"].push_back({{"name", plan.inks[ink].name},
                                {"mean", Percent(found.inks[ink].sum, plan.Pixels(), plan)},
                                {"maximum", Percent(found.inks[ink].largest, 1, plan)},
                                {"sum", found.inks[ink].sum},
                                {"largest", found.inks[ink].largest}});
    json["total"] = {{"mean", Percent(found.sum, plan.Pixels(), plan)},
                     {"maximum", Percent(found.largest.sum, 1, plan)},
                     {"x", found.largest.x},
                     {"y", found.largest.y},
                     {"sum", found.sum},
                     {"largest", found.largest.sum}};
    json["pixels_above"] = found.pixelsAbove;
    json["share_above"] =
        static_cast<double>(found.pixelsAbove) / static_cast<double>(plan.Pixels());
    json["window"] = nullptr;
    if (plan.window)
        json["window"] = {{"width", plan.window->width},
                          {"height", plan.window->height},
                          {"mean", Percent(found.window.sum, PixelsOf(*plan.window), plan)},
                          {"x", found.window.x},
                          {"y", found.window.y},
                          {"sum", found.window.sum}};
    return json;
}

} // namespace zvk::Pelkraft::Client
