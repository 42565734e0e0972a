#pragma once

#include "tools/pelkraft/ink_colours.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The picture that a person sees of rows of ink values: each ink takes light away from white
// paper, and the light of many pixels is averaged into one. At most 1600 pixels on a side.
class PreviewPicture
{
public:
    // pixelHeight is the height of a pixel for a width of 1.
    PreviewPicture(std::uint32_t newWidth, std::uint32_t newHeight, double pixelHeight,
                   const std::vector<ScreenColour>& inks);

    // The next row: a byte for each ink and pixel.
    void AddRow(const unsigned char* row);

    // The picture as the bytes of a PNG file.
    std::string Png() const;

private:
    // The share of red, green and blue light that a value of an ink leaves.
    using Light = std::array<float, 3>;

    void FinishRow();

    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t shownWidth = 1;
    std::uint32_t shownHeight = 1;
    std::vector<std::array<Light, 256>> lights;
    std::uint32_t nextRow = 0;
    std::uint32_t shownRow = 0;
    std::uint32_t rowsSummed = 0;
    std::vector<double> sums;
    std::vector<std::uint8_t> pixels;
};

} // namespace zvk::Pelkraft::Client
