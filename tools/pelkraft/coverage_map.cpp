#include "tools/pelkraft/coverage_map.h"

#include "tools/pelkraft/png_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double longestSide = 1600;

using Colour = std::array<std::uint8_t, 3>;
constexpr Colour white = {255, 255, 255};
constexpr Colour blue = {64, 112, 200};
constexpr Colour yellow = {250, 220, 60};
constexpr Colour red = {200, 0, 0};

// The first of the places that fall into a part, of parts that lie evenly over length.
std::uint32_t PartStart(std::uint32_t part, std::uint32_t parts, std::uint32_t length)
{
    return static_cast<std::uint32_t>(std::uint64_t{part} * length / parts);
}

std::uint32_t Scaled(double length, std::uint32_t most)
{
    return static_cast<std::uint32_t>(
        std::clamp(std::floor(length), 1.0, static_cast<double>(most)));
}

Colour Between(const Colour& low, const Colour& high, double share)
{
    Colour mixed = {};
    for (std::size_t i = 0; i < mixed.size(); ++i)
        mixed[i] = static_cast<std::uint8_t>(std::lround(low[i] + (high[i] - low[i]) * share));
    return mixed;
}

// share is 1 at the limit.
Colour ColourOf(double share)
{
    if (share > 1)
        return red;
    return share < 0.5 ? Between(white, blue, 2 * share) : Between(blue, yellow, 2 * share - 1);
}

} // namespace

CoverageMap::CoverageMap(std::uint32_t newWidth, std::uint32_t newHeight,
                         const PageResolution& resolution)
    : width(newWidth), height(newHeight)
{
    const double pixelHeight = resolution.PixelHeight();
    const double seenHeight = height * pixelHeight;
    const double scale =
        std::min({1.0, 1 / pixelHeight, longestSide / std::max<double>(width, seenHeight)});
    shownWidth = Scaled(width * scale, width);
    shownHeight = Scaled(seenHeight * scale, height);
    sums.resize(std::size_t{shownWidth} * shownHeight);
}

template <typename Total>
void CoverageMap::AddRow(const Total* totals)
{
    const std::size_t first = std::size_t{shownRow} * shownWidth;
    for (std::uint32_t part = 0; part < shownWidth; ++part)
        sums[first + part] +=
            std::accumulate(totals + PartStart(part, shownWidth, width),
                            totals + PartStart(part + 1, shownWidth, width), std::uint64_t{0});
    ++nextRow;
    if (nextRow == PartStart(shownRow + 1, shownHeight, height))
        ++shownRow;
}

template void CoverageMap::AddRow(const std::uint16_t* totals);
template void CoverageMap::AddRow(const std::uint32_t* totals);

std::string CoverageMap::Png(std::uint64_t full, std::uint64_t limit) const
{
    std::string bytes;
    PngWriter png({}, {shownWidth, shownHeight, 0, 0}, [&](const void* piece, std::size_t size) {
        bytes.append(static_cast<const char*>(piece), size);
        return 0;
    });
    const double most = static_cast<double>(full) * static_cast<double>(limit) / 100000;
    std::vector<std::uint8_t> colours(std::size_t{shownWidth} * 3);
    for (std::uint32_t row = 0; row < shownHeight; ++row) {
        const std::uint32_t rows =
            PartStart(row + 1, shownHeight, height) - PartStart(row, shownHeight, height);
        for (std::uint32_t part = 0; part < shownWidth; ++part) {
            const std::uint32_t columns =
                PartStart(part + 1, shownWidth, width) - PartStart(part, shownWidth, width);
            const double mean = static_cast<double>(sums[std::size_t{row} * shownWidth + part]) /
                                (static_cast<double>(rows) * columns);
            const Colour colour = ColourOf(mean / most);
            std::copy(colour.begin(), colour.end(), colours.begin() + 3 * std::ptrdiff_t{part});
        }
        png.AddRow(colours.data());
    }
    png.Finish();
    return bytes;
}

} // namespace zvk::Pelkraft::Client
