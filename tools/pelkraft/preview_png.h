#pragma once

#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/png_writer.h"
#include "tools/pelkraft/preview_picture.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Shows rows of inks as a PNG, which goes out as it comes.
class PreviewPng
{
public:
    // The resolution is that of the page.
    PreviewPng(const std::string& path, const PreviewFrame& frame, InkLayers layers,
               const PageResolution& resolution, PngWriter::Sink sink);

    // The next row of the frame, or the light of it that the picture has mixed.
    void AddRow(const unsigned char* row);
    void AddLight(const double* light);
    const PreviewPicture& Picture() const { return picture; }
    void Finish() { png.Finish(); }

private:
    PreviewPicture picture;
    PngWriter png;
    std::vector<double> lightOfRow;
};

} // namespace zvk::Pelkraft::Client
