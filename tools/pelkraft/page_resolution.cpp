#include "tools/pelkraft/page_resolution.h"

#include <cmath>
#include <cstdio>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double mmPerInch = 25.4;
constexpr double mmPerCentimetre = 10;

double MmPerUnit(std::uint16_t unit)
{
    return unit == RESUNIT_CENTIMETER ? mmPerCentimetre : mmPerInch;
}

// Neither damaged numbers nor missing ones.
bool IsLength(double pixels)
{
    return std::isfinite(pixels) && pixels > 0;
}

} // namespace

bool PageResolution::HasLength() const
{
    return IsLength(horizontal) && IsLength(vertical) &&
           (unit == RESUNIT_INCH || unit == RESUNIT_CENTIMETER);
}

double PageResolution::PixelsPerMmAcross() const
{
    return horizontal / MmPerUnit(unit);
}

double PageResolution::PixelsPerMmDown() const
{
    return vertical / MmPerUnit(unit);
}

double PageResolution::PixelHeight() const
{
    if (!IsLength(horizontal) || !IsLength(vertical))
        return 1;
    const double ratio = horizontal / vertical;
    // A ratio that no device has is no resolution.
    return ratio > 0.01 && ratio < 100 ? ratio : 1;
}

std::string PageResolution::Words() const
{
    if (horizontal == 0 && vertical == 0)
        return "no resolution";
    const std::string numbers = NumberWords(horizontal) + " x " + NumberWords(vertical);
    if (unit == RESUNIT_INCH)
        return numbers + " dpi";
    if (unit == RESUNIT_CENTIMETER)
        return numbers + " pixels per cm";
    return numbers + " without a unit";
}

PageResolution ReadResolution(const TiffFile& file)
{
    PageResolution resolution;
    float number = 0;
    if (TIFFGetField(file.Get(), TIFFTAG_XRESOLUTION, &number) == 1)
        resolution.horizontal = static_cast<double>(number);
    if (TIFFGetField(file.Get(), TIFFTAG_YRESOLUTION, &number) == 1)
        resolution.vertical = static_cast<double>(number);
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_RESOLUTIONUNIT, &resolution.unit);
    return resolution;
}

std::string NumberWords(double number)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.6g", number);
    return text;
}

} // namespace zvk::Pelkraft::Client
