#include "tools/pelkraft/page_tags.h"

#include "pattern/pattern_words.h"
#include "tools/pelkraft/findings.h"
#include "tools/pelkraft/lost_tags.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

bool IsLab(std::uint16_t photometric)
{
    return photometric == PHOTOMETRIC_CIELAB || photometric == PHOTOMETRIC_ICCLAB ||
           photometric == PHOTOMETRIC_ITULAB;
}

bool StartsInOrder(const std::vector<int>& map, std::size_t count)
{
    if (map.size() < count)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        if (map[i] != static_cast<int>(i))
            return false;
    }
    return true;
}

std::vector<int> AllInOrder(std::size_t count)
{
    std::vector<int> map(count);
    for (std::size_t i = 0; i < count; ++i)
        map[i] = static_cast<int>(i);
    return map;
}

std::vector<std::uint16_t> ExtrasFrom(const std::vector<Channel>& channels,
                                      const std::vector<int>& map, std::size_t first)
{
    std::vector<std::uint16_t> kinds;
    for (std::size_t i = first; i < map.size(); ++i) {
        const bool known = map[i] >= 0 && channels[static_cast<std::size_t>(map[i])].extra;
        kinds.push_back(known ? channels[static_cast<std::size_t>(map[i])].extraKind
                              : std::uint16_t{EXTRASAMPLE_UNSPECIFIED});
    }
    return kinds;
}

void DropColour(PageTags& tags, const std::string& why)
{
    tags.warnings.push_back(why + "; written as MinIsBlack");
    tags.photometric = PHOTOMETRIC_MINISBLACK;
    tags.keepColourTags = false;
}

std::string NameOf(const std::vector<Channel>& channels, int source)
{
    if (source < 0)
        return "Empty";
    const std::string& name = channels[static_cast<std::size_t>(source)].name;
    return name.empty() ? NumberedName(static_cast<std::size_t>(source)) : name;
}

// A profile describes the channels that it was made for, in their order.
void DropProfile(PageTags& tags, const TiffFile& file)
{
    std::uint32_t bytes = 0;
    void* profile = nullptr;
    if (TIFFGetField(file.Get(), TIFFTAG_ICCPROFILE, &bytes, &profile) == 1)
        tags.warnings.push_back("the inks have changed; written without the colour profile");
    tags.keepColourTags = false;
}

// Channels that are colours or inks by the tags.
std::size_t CountColours(const std::vector<Channel>& channels)
{
    return static_cast<std::size_t>(
        std::count_if(channels.begin(), channels.end(), [](const Channel& c) { return !c.extra; }));
}

// Inks that moved are named anew; extra samples at the end stay what they are.
void PlanInks(PageTags& tags, const TiffFile& file, const std::vector<Channel>& channels,
              const std::vector<int>& map)
{
    std::size_t inks = map.size();
    while (inks > 0 && map[inks - 1] >= 0 &&
           channels[static_cast<std::size_t>(map[inks - 1])].extra)
        --inks;
    if (inks == 0)
        inks = map.size();
    tags.extraKinds = ExtrasFrom(channels, map, inks);
    if (inks == CountColours(channels) && StartsInOrder(map, inks))
        return;

    DropProfile(tags, file);
    tags.inkSet = std::uint16_t{INKSET_MULTIINK};
    tags.numberOfInks = static_cast<std::uint16_t>(inks);
    tags.inkNames.clear();
    for (std::size_t i = 0; i < inks; ++i)
        tags.inkNames.push_back(NameOf(channels, map[i]));
    WarnOfTwins(tags);
}

void PlanColours(PageTags& tags, const std::vector<Channel>& channels, const std::vector<int>& map)
{
    std::size_t colours = CountColours(channels);
    const std::string kind = PhotometricName(tags.photometric);
    if (!StartsInOrder(map, colours)) {
        if (IsGray(tags.photometric))
            tags.keepColourTags = false;
        else if (colours < 2 || map.size() < colours)
            DropColour(tags, "the chosen channels are no longer " + kind);
        else
            tags.warnings.push_back("the channels have changed, and the page still says " + kind);
    }
    if (IsGray(tags.photometric))
        colours = 1;
    tags.extraKinds = ExtrasFrom(channels, map, std::min(colours, map.size()));
}

void PlanDepth(PageTags& tags, const TiffPicture& picture, int newBits)
{
    if (newBits == picture.bits)
        return;
    if (tags.photometric == PHOTOMETRIC_PALETTE)
        DropColour(tags, "palette numbers mean nothing at another depth");
    else if (tags.photometric == PHOTOMETRIC_MASK)
        DropColour(tags, "a transparency mask has 1 bit");
    else if (IsLab(tags.photometric))
        tags.warnings.push_back("Lab samples change their scale with the depth, and are converted "
                                "like all others");
}

// Says why tags that are in sample values can't stay, or nothing.
std::string ChangeOfSamples(const TiffPicture& picture, const std::vector<int>& map, int newBits,
                            const InkRange& range)
{
    if (picture.bits != newBits)
        return "the depth changes";
    if (!map.empty())
        return "the channels change";
    if (range.invert || range.lines)
        return "the samples change";
    return {};
}

} // namespace

PageTags PlanTags(const TiffFile& file, const TiffPicture& picture,
                  const std::vector<Channel>& channels, const std::vector<int>& map, int newBits,
                  const InkRange& range)
{
    PageTags tags;
    tags.photometric = range.photometric;
    tags.dotRange = range.tag;
    tags.warnings = range.losses;
    std::uint16_t value = 0;
    if (TIFFGetField(file.Get(), TIFFTAG_INKSET, &value) == 1)
        tags.inkSet = value;
    if (TIFFGetField(file.Get(), TIFFTAG_NUMBEROFINKS, &value) == 1)
        tags.numberOfInks = value;
    tags.inkNames = ReadInkTags(file);

    const std::vector<int> order = map.empty() ? AllInOrder(channels.size()) : map;
    if (picture.photometric == PHOTOMETRIC_SEPARATED)
        PlanInks(tags, file, channels, order);
    else
        PlanColours(tags, channels, order);
    PlanDepth(tags, picture, newBits);
    const std::string change = ChangeOfSamples(picture, map, newBits, range);
    tags.keepValueTags = change.empty();
    AddLosses(file, change, tags);
    return tags;
}

void WarnOfTwins(PageTags& tags)
{
    std::set<std::string> names;
    for (const std::string& name : tags.inkNames) {
        if (!names.insert(UpperCase(name)).second)
            tags.warnings.push_back("more than one ink of the new page is named \"" + Shown(name) +
                                    "\"; whoever goes by names takes the first");
    }
}

} // namespace zvk::Pelkraft::Client
