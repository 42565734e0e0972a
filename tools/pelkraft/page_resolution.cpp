#include "tools/pelkraft/page_resolution.h"

#include <cstdint>

namespace zvk::Pelkraft::Client {
namespace {

constexpr double inchesPerMetre = 1 / 0.0254;
constexpr double centimetresPerMetre = 100;
// No device has more.
constexpr double highest = 1e8;

bool ReadPair(const TiffFile& file, float& across, float& down)
{
    return TIFFGetField(file.Get(), TIFFTAG_XRESOLUTION, &across) == 1 &&
           TIFFGetField(file.Get(), TIFFTAG_YRESOLUTION, &down) == 1;
}

double Scaled(float resolution, double factor)
{
    const double scaled = static_cast<double>(resolution) * factor;
    return scaled > 0 && scaled < highest ? scaled : 0;
}

} // namespace

PageResolution ReadResolution(const TiffFile& file)
{
    float across = 0;
    float down = 0;
    std::uint16_t unit = RESUNIT_NONE;
    if (!ReadPair(file, across, down) ||
        TIFFGetFieldDefaulted(file.Get(), TIFFTAG_RESOLUTIONUNIT, &unit) != 1 ||
        (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER))
        return {};
    const double factor = unit == RESUNIT_INCH ? inchesPerMetre : centimetresPerMetre;
    return {Scaled(across, factor), Scaled(down, factor)};
}

double PixelHeight(const TiffFile& file)
{
    float across = 0;
    float down = 0;
    if (!ReadPair(file, across, down))
        return 1;
    const double ratio = static_cast<double>(across) / static_cast<double>(down);
    // A ratio that no device has is no resolution.
    return ratio > 0.01 && ratio < 100 ? ratio : 1;
}

} // namespace zvk::Pelkraft::Client
