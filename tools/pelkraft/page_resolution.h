#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// Pixels of a page in a unit of length; 0 where the page doesn't tell.
struct PageResolution
{
    double horizontal = 0;
    double vertical = 0;
    // The tag's own number: RESUNIT_NONE, RESUNIT_INCH or RESUNIT_CENTIMETER.
    std::uint16_t unit = 0;

    bool operator==(const PageResolution&) const = default;
    // Both numbers are there and above 0, and so is a unit of length.
    bool HasLength() const;
    // Pixels in a millimetre, where there is a length.
    double PixelsPerMmAcross() const;
    double PixelsPerMmDown() const;
    // The height of a pixel for a width of 1; 1 where the page doesn't tell.
    double PixelHeight() const;
    // "300 x 300 dpi"
    std::string Words() const;
};

// The resolution of the page at which the file stands.
PageResolution ReadResolution(const TiffFile& file);

// Six digits at most, and no zeros at the end.
std::string NumberWords(double number);

} // namespace zvk::Pelkraft::Client
