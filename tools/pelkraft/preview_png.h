#pragma once

#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/picture_turn.h"
#include "tools/pelkraft/png_writer.h"
#include "tools/pelkraft/preview_picture.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The page that a picture shows. Its tag Orientation has a number, and a large picture needs a
// place until it can be turned.
struct ShownPage
{
    PageResolution resolution;
    std::uint16_t orientation = 1;
    Spool spool = {};
};

// The turn of a picture in this frame.
TurnShape TurnShapeOf(const PreviewFrame& frame, std::uint16_t orientation);

// Shows rows of inks as a PNG, which goes out as it comes, or else when it has been turned.
class PreviewPng
{
public:
    PreviewPng(const std::string& path, const PreviewFrame& frame, InkLayers layers,
               const ShownPage& page, PngWriter::Sink sink);

    // The next row of the frame, or the light of it that the picture has mixed.
    void AddRow(const unsigned char* row);
    void AddLight(const double* light);
    const PreviewPicture& Picture() const { return picture; }
    void Finish();

private:
    PreviewPicture picture;
    PngWriter png;
    PictureTurn turn;
    std::vector<double> lightOfRow;
};

} // namespace zvk::Pelkraft::Client
