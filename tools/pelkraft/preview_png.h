#pragma once

#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/png_writer.h"
#include "tools/pelkraft/preview_picture.h"

#include <string>

namespace zvk::Pelkraft::Client {

// Shows rows of inks as a PNG, which goes out as it comes.
class PreviewPng
{
public:
    // The resolution is that of the page.
    PreviewPng(const std::string& path, const PreviewFrame& frame, InkLayers layers,
               const PageResolution& resolution, PngWriter::Sink sink);

    // The next row of the frame.
    void AddRow(const unsigned char* row);
    void Finish() { png.Finish(); }

private:
    PreviewPicture picture;
    PngWriter png;
};

} // namespace zvk::Pelkraft::Client
