#include "tools/pelkraft/ink_names.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

std::vector<std::string> UsualNames(std::uint16_t photometric)
{
    switch (photometric) {
    case PHOTOMETRIC_SEPARATED:
        return {"Cyan", "Magenta", "Yellow", "Black"};
    case PHOTOMETRIC_RGB:
        return {"Red", "Green", "Blue"};
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return {"Gray"};
    default:
        return {};
    }
}

// Channels that are colours or inks. libtiff calls every ink beyond the fourth an extra sample
// where the page doesn't tell, so that the count of inks has the last word.
int CountColours(const TiffFile& file, const TiffPicture& picture, int extras)
{
    const int colours = picture.channels - extras;
    std::uint16_t inks = 0;
    if (picture.photometric != PHOTOMETRIC_SEPARATED ||
        TIFFGetField(file.Get(), TIFFTAG_NUMBEROFINKS, &inks) != 1)
        return colours;
    return std::max<int>(colours, std::min<int>(inks, picture.channels));
}

} // namespace

std::vector<std::string> ReadInkTags(const TiffFile& file)
{
    char* names = nullptr;
    std::uint16_t count = 0;
    if (TIFFGetField(file.Get(), TIFFTAG_INKNAMES, &names) != 1 || names == nullptr ||
        TIFFGetField(file.Get(), TIFFTAG_NUMBEROFINKS, &count) != 1)
        return {};
    std::vector<std::string> result;
    for (int ink = 0; ink < count; ++ink) {
        result.emplace_back(names);
        names += result.back().size() + 1;
    }
    return result;
}

std::vector<Channel> ReadChannels(const TiffFile& file, const TiffPicture& picture)
{
    std::uint16_t extraCount = 0;
    std::uint16_t* extraKinds = nullptr;
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_EXTRASAMPLES, &extraCount, &extraKinds);
    const int extras = std::min<int>(extraCount, picture.channels);
    const int colours = CountColours(file, picture, extras);

    std::uint16_t inkSet = INKSET_CMYK;
    TIFFGetField(file.Get(), TIFFTAG_INKSET, &inkSet);
    std::vector<std::string> names = ReadInkTags(file);
    if (names.empty() && (picture.photometric != PHOTOMETRIC_SEPARATED || inkSet == INKSET_CMYK))
        names = UsualNames(picture.photometric);

    std::vector<Channel> channels(static_cast<std::size_t>(picture.channels));
    for (int i = 0; i < picture.channels; ++i) {
        Channel& channel = channels[static_cast<std::size_t>(i)];
        if (i < static_cast<int>(names.size()))
            channel.name = names[static_cast<std::size_t>(i)];
        channel.extra = i >= colours;
        if (channel.extra)
            channel.extraKind = extraKinds[i - (picture.channels - extras)];
    }
    return channels;
}

} // namespace zvk::Pelkraft::Client
