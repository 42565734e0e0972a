#include "tools/pelkraft/ink_codes.h"

#include "tools/pelkraft/failure.h"

#include <string>

namespace zvk::Pelkraft::Client {
namespace {

bool InkIsHigh(std::uint16_t photometric, Polarity polarity)
{
    if (polarity != Polarity::Auto)
        return polarity == Polarity::InkHigh;
    return photometric != PHOTOMETRIC_MINISBLACK && photometric != PHOTOMETRIC_RGB;
}

// Only inks have a range of dots.
DotRange ReadDotRange(const TiffFile& file, const TiffPicture& picture, int highest)
{
    std::uint16_t none = 0;
    std::uint16_t full = 0;
    if (picture.photometric == PHOTOMETRIC_SEPARATED &&
        TIFFGetField(file.Get(), TIFFTAG_DOTRANGE, &none, &full) == 1)
        return {none, full};
    return {0, highest};
}

} // namespace

InkCodes ReadInkCodes(const TiffFile& file, const TiffPicture& picture, const InputOptions& input)
{
    const int highest = (1 << picture.bits) - 1;
    const DotRange range = input.dotRange ? *input.dotRange : ReadDotRange(file, picture, highest);
    if (range.none == range.full || range.none > highest || range.full > highest)
        throw Failure(input.dotRange ? ExitCode::Usage : ExitCode::BadInput, file.Path(),
                      "dot range " + std::to_string(range.none) + ',' + std::to_string(range.full) +
                          " is empty or exceeds the samples, which reach " +
                          std::to_string(highest) + "; --dot-range LO,HI gives another");
    if (InkIsHigh(picture.photometric, input.polarity))
        return {range.none, range.full};
    return {highest - range.none, highest - range.full};
}

} // namespace zvk::Pelkraft::Client
