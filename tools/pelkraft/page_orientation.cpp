#include "tools/pelkraft/page_orientation.h"

#include "tools/pelkraft/failure.h"

#include <iterator>

namespace zvk::Pelkraft::Client {
namespace {

struct OrientationKind
{
    // The places of the first row and of its first pixel.
    const char* places;
    // The way from the stored picture to the seen one.
    const char* turn;
};

// By the values of the tag.
constexpr OrientationKind kinds[] = {
    {"", ""},
    {"top, left", "as it is stored"},
    {"top, right", "mirrored left to right"},
    {"bottom, right", "turned by 180 degrees"},
    {"bottom, left", "mirrored top to bottom"},
    {"left, top", "mirrored left to right, then turned by 90 degrees counterclockwise"},
    {"right, top", "turned by 90 degrees clockwise"},
    {"right, bottom", "mirrored left to right, then turned by 90 degrees clockwise"},
    {"left, bottom", "turned by 90 degrees counterclockwise"}};

} // namespace

std::uint16_t ReadOrientation(const TiffFile& file)
{
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_ORIENTATION, &orientation);
    return orientation >= ORIENTATION_TOPLEFT && orientation < std::size(kinds)
               ? orientation
               : std::uint16_t{ORIENTATION_TOPLEFT};
}

std::string OrientationWords(std::uint64_t orientation)
{
    const std::string number = std::to_string(orientation);
    if (orientation == 0 || orientation >= std::size(kinds))
        return number + ", which means nothing";
    return number + ", which puts the first row and its first pixel at " +
           kinds[orientation].places + ": a person sees the page " + kinds[orientation].turn;
}

void WarnOfOrientation(const TiffFile& file, const std::string& what)
{
    const std::uint16_t orientation = ReadOrientation(file);
    if (orientation != ORIENTATION_TOPLEFT)
        PrintWarning(file.Path(), "Orientation is " + OrientationWords(orientation) + "; " + what);
}

} // namespace zvk::Pelkraft::Client
