#include "tools/pelkraft/preview_png.h"

#include <cmath>
#include <utility>

namespace zvk::Pelkraft::Client {
namespace {

std::uint32_t PerMetre(double pixelsPerMetre, std::uint32_t shown, std::uint32_t pixels)
{
    return static_cast<std::uint32_t>(std::lround(pixelsPerMetre * shown / pixels));
}

PngShape ShapeOf(const PreviewFrame& frame, const PageResolution& resolution)
{
    return {frame.shownWidth, frame.shownHeight,
            PerMetre(resolution.across, frame.shownWidth, frame.width),
            PerMetre(resolution.down, frame.shownHeight, frame.height)};
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
