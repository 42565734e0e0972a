#include "tools/pelkraft/page_orientation.h"

#include "tools/pelkraft/failure.h"

#include <iterator>

namespace zvk::Pelkraft::Client {
namespace {

// By the values of the tag.
constexpr const char* words[] = {
    "",          "top, left",  "top, right",    "bottom, right", "bottom, left",
    "left, top", "right, top", "right, bottom", "left, bottom"};

} // namespace

std::uint16_t ReadOrientation(const TiffFile& file)
{
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_ORIENTATION, &orientation);
    return orientation >= ORIENTATION_TOPLEFT && orientation < std::size(words)
               ? orientation
               : std::uint16_t{ORIENTATION_TOPLEFT};
}

std::string OrientationWords(std::uint64_t orientation)
{
    const std::string number = std::to_string(orientation);
    if (orientation == 0 || orientation >= std::size(words))
        return number + ", which means nothing";
    return number + ", which puts the first row and its first pixel at " + words[orientation];
}

void WarnOfOrientation(const TiffFile& file, const std::string& what)
{
    const std::uint16_t orientation = ReadOrientation(file);
    if (orientation != ORIENTATION_TOPLEFT)
        PrintWarning(file.Path(), "Orientation is " + OrientationWords(orientation) + "; " + what);
}

} // namespace zvk::Pelkraft::Client
