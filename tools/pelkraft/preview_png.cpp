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

PngShape ShapeOf(const PreviewFrame& frame, const ShownPage& page)
{
    PngShape shape = {frame.shownWidth, frame.shownHeight, 0, 0};
    const PageResolution& resolution = page.resolution;
    if (resolution.HasLength()) {
        shape.pixelsPerMetre =
            PerMetre(resolution.PixelsPerMmAcross(), frame.shownWidth, frame.width);
        shape.rowsPerMetre =
            PerMetre(resolution.PixelsPerMmDown(), frame.shownHeight, frame.height);
    }
    if (TurnShapeOf(frame, page.orientation).SwapsSides()) {
        std::swap(shape.width, shape.height);
        std::swap(shape.pixelsPerMetre, shape.rowsPerMetre);
    }
    return shape;
}

} // namespace

TurnShape TurnShapeOf(const PreviewFrame& frame, std::uint16_t orientation)
{
    return {frame.shownWidth, frame.shownHeight, orientation};
}

PreviewPng::PreviewPng(const std::string& path, const PreviewFrame& frame, InkLayers layers,
                       const ShownPage& page, PngWriter::Sink sink)
    : picture(frame, std::move(layers)), png(path, ShapeOf(frame, page), std::move(sink)),
      turn(path, TurnShapeOf(frame, page.orientation), page.spool,
           [this](const std::uint8_t* row) { png.AddRow(row); }),
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
        turn.AddRow(shown);
}

void PreviewPng::Finish()
{
    turn.Finish();
    png.Finish();
}

} // namespace zvk::Pelkraft::Client
