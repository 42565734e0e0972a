#include "tools/pelkraft/preview_picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double longestSide = 1600;
constexpr std::size_t colours = 3;

// The first pixel of a part, of parts that lie evenly over length.
std::uint32_t PartStart(std::uint32_t part, std::uint32_t parts, std::uint32_t length)
{
    return static_cast<std::uint32_t>(std::uint64_t{part} * length / parts);
}

std::uint32_t Scaled(double length, std::uint32_t most)
{
    return static_cast<std::uint32_t>(
        std::clamp(std::floor(length), 1.0, static_cast<double>(most)));
}

} // namespace

PreviewFrame FitFrame(std::uint32_t width, std::uint32_t height, double pixelHeight)
{
    const double seenHeight = height * pixelHeight;
    const double scale =
        std::min({1.0, 1 / pixelHeight, longestSide / std::max<double>(width, seenHeight)});
    return {width, height, Scaled(width * scale, width), Scaled(seenHeight * scale, height)};
}

PreviewFrame PlainFrame(std::uint32_t width, std::uint32_t height)
{
    return {width, height, width, height};
}

PreviewPicture::PreviewPicture(const PreviewFrame& newFrame, InkLayers newLayers)
    : frame(newFrame), layers(std::move(newLayers)), sums(frame.shownWidth * colours),
      pixels(frame.shownWidth * colours)
{}

const std::uint8_t* PreviewPicture::AddLight(const double* light)
{
    for (double& sum : sums)
        sum += *light++;
    ++rowsSummed;
    ++nextRow;
    if (nextRow != PartStart(shownRow + 1, frame.shownHeight, frame.height))
        return nullptr;
    std::transform(sums.begin(), sums.end(), pixels.begin(),
                   [this](double sum) { return ScreenValueOf(sum / rowsSummed); });
    std::fill(sums.begin(), sums.end(), 0.0);
    rowsSummed = 0;
    ++shownRow;
    return pixels.data();
}

void PreviewPicture::MixRow(const unsigned char* row, double* light) const
{
    const std::size_t pixelBytes = layers.PixelBytes();
    for (std::uint32_t part = 0; part < frame.shownWidth; ++part) {
        const std::uint32_t start = PartStart(part, frame.shownWidth, frame.width);
        const std::uint32_t end = PartStart(part + 1, frame.shownWidth, frame.width);
        Light sum = {};
        for (std::uint32_t pixel = start; pixel < end; ++pixel) {
            const Light one = layers.LightOfPixel(row + pixelBytes * pixel);
            for (std::size_t c = 0; c < colours; ++c)
                sum[c] += one[c];
        }
        for (std::size_t c = 0; c < colours; ++c)
            light[part * colours + c] = sum[c] / (end - start);
    }
}

} // namespace zvk::Pelkraft::Client
