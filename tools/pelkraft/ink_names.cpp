#include "tools/pelkraft/ink_names.h"

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

constexpr const char* grayName = "Gray";

std::vector<std::string> UsualNames(std::uint16_t photometric)
{
    switch (photometric) {
    case PHOTOMETRIC_SEPARATED:
        return {"Cyan", "Magenta", "Yellow", "Black"};
    case PHOTOMETRIC_RGB:
        return {"Red", "Green", "Blue"};
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return {grayName};
    default:
        return {};
    }
}

// libtiff calls every ink beyond the fourth an extra sample where the page doesn't tell, so that
// the count of inks has the last word on samples of no told kind.
int CountInks(const TiffFile& file, const TiffPicture& picture)
{
    std::uint16_t inks = 0;
    if (picture.photometric != PHOTOMETRIC_SEPARATED ||
        TIFFGetField(file.Get(), TIFFTAG_NUMBEROFINKS, &inks) != 1)
        return 0;
    return inks;
}

void NameChannels(const TiffFile& file, const TiffPicture& picture, std::vector<Channel>& channels)
{
    std::uint16_t inkSet = INKSET_CMYK;
    TIFFGetField(file.Get(), TIFFTAG_INKSET, &inkSet);
    std::vector<std::string> names = ReadInkTags(file);
    if (names.empty() && (picture.photometric != PHOTOMETRIC_SEPARATED || inkSet == INKSET_CMYK))
        names = UsualNames(picture.photometric);
    for (std::size_t i = 0; i < std::min(channels.size(), names.size()); ++i)
        channels[i].name = names[i];
    const auto inks = std::count_if(channels.begin(), channels.end(),
                                    [](const Channel& channel) { return channel.ink; });
    // Beside other inks nobody knows which one the first is.
    if (inks == 1 && channels[0].name == grayName) {
        channels[0].name = "Black";
        channels[0].otherName = grayName;
    }
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

bool IsPageOfInks(std::uint16_t photometric)
{
    return photometric == PHOTOMETRIC_SEPARATED || photometric == PHOTOMETRIC_MINISWHITE ||
           photometric == PHOTOMETRIC_MINISBLACK;
}

std::string NumberedName(std::size_t channel)
{
    return "Channel " + std::to_string(channel);
}

std::vector<Channel> ReadChannels(const TiffFile& file, const TiffPicture& picture)
{
    std::uint16_t extraCount = 0;
    std::uint16_t* extraKinds = nullptr;
    TIFFGetFieldDefaulted(file.Get(), TIFFTAG_EXTRASAMPLES, &extraCount, &extraKinds);
    const int firstExtra = picture.channels - std::min<int>(extraCount, picture.channels);
    const int inks = CountInks(file, picture);
    const bool ofInks = IsPageOfInks(picture.photometric);

    std::vector<Channel> channels(static_cast<std::size_t>(picture.channels));
    for (int i = firstExtra; i < picture.channels; ++i) {
        Channel& channel = channels[static_cast<std::size_t>(i)];
        const std::uint16_t kind = extraKinds[i - firstExtra];
        channel.extra = i >= inks || kind != EXTRASAMPLE_UNSPECIFIED;
        if (channel.extra)
            channel.extraKind = kind;
        channel.ink = ofInks ? !channel.IsAlpha() : !channel.extra;
    }
    NameChannels(file, picture, channels);
    return channels;
}

} // namespace zvk::Pelkraft::Client
