#include "tools/pelkraft/preview_png.h"

#include <cmath>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

// No device has more.
constexpr double highestPerMetre = 1e8;

std::uint32_t PerMetre(double pixelsPerMm, std::uint32_t shown, std::uint32_t pixels)
{
    const double perMetre = pixelsPerMm * 1000 * shown / pixels;
    return perMetre < highestPerMetre ? static_cast<std::uint32_t>(std::lround(perMetre)) : 0;
}

PngShape ShapeOf(const PreviewFrame& frame, const PageResolution& resolution)
{
    PngShape shape = {frame.shownWidth, frame.shownHeight, 0, 0};
    if (!resolution.HasLength())
        return shape;
    shape.pixelsPerMetre = PerMetre(resolution.PixelsPerMmAcross(), frame.shownWidth, frame.width);
    shape.rowsPerMetre = PerMetre(resolution.PixelsPerMmDown(), frame.shownHeight, frame.height);
    return shape;
}

} // namespace

PreviewPng::PreviewPng(const std::string& path, const PreviewFrame& frame, InkLayers layers,
                       const PageResolution& resolution, PngWriter::Sink sink)
    : picture(frame, std::move(layers)), png(path, ShapeOf(frame, resolution), std::move(sink)),
      lightOfRow(picture.LightSize())
{}

void PreviewPng::AddRow(const unsigned char* row)
{
    picture.MixRow(row, lightOfRow.data());
    AddLight(lightOfRow.data());
}

void PreviewPng::AddLight(const double* light)
{
    if (const std::uint8_t* const shown = picture.AddLight(light); shown != nullptr)
        png.AddRow(shown);
}

} // namespace zvk::Pelkraft::Client
