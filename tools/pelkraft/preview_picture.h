#pragma once

#include "tools/pelkraft/ink_layers.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// The pixels of a page that a picture shows, and the size in which it shows them.
struct PreviewFrame
{
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t shownWidth = 0;
    std::uint32_t shownHeight = 0;
};

// A frame of at most 1600 pixels on a side, for pixels of this height and a width of 1.
PreviewFrame FitFrame(std::uint32_t width, std::uint32_t height, double pixelHeight);
// A frame in which each pixel is shown.
PreviewFrame PlainFrame(std::uint32_t width, std::uint32_t height);

// The picture that a person sees of rows of inks: the light of many pixels is averaged into one.
class PreviewPicture
{
public:
    PreviewPicture(const PreviewFrame& newFrame, InkLayers newLayers);

    const PreviewFrame& Frame() const { return frame; }

    // Numbers in the light of one row.
    std::size_t LightSize() const { return sums.size(); }
    // Mixes a row of the frame to the light of the picture's pixels. Threads may share this.
    void MixRow(const unsigned char* row, double* light) const;

    // Takes the light of the next row of the frame. Answers a row of the picture, three bytes for
    // each pixel, if this was the last one of it, else null.
    const std::uint8_t* AddLight(const double* light);

private:
    PreviewFrame frame;
    InkLayers layers;
    std::uint32_t nextRow = 0;
    std::uint32_t shownRow = 0;
    std::uint32_t rowsSummed = 0;
    std::vector<double> sums;
    std::vector<std::uint8_t> pixels;
};

} // namespace zvk::Pelkraft::Client
