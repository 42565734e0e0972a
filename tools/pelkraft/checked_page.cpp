#include "tools/pelkraft/checked_page.h"

#include <tiffio.h>

#include <algorithm>

namespace zvk::Pelkraft::Client {
namespace {

// Longer ones are cut: a rule compares what a person can read.
constexpr std::size_t mostNameBytes = 65536;
constexpr std::size_t mostNumbers = 65536;

std::vector<std::string> SplitNames(const std::string& text)
{
    std::vector<std::string> names;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\0', start), text.size());
        names.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    // Some programs fill the tag up.
    while (!names.empty() && names.back().empty())
        names.pop_back();
    return names;
}

std::optional<std::uint64_t> OptionalNumber(const CheckedPage& page, std::uint16_t tag)
{
    if (page.Find(tag) == nullptr)
        return std::nullopt;
    return page.Number(tag, 0);
}

} // namespace

const RawTag* CheckedPage::Find(std::uint16_t tag) const
{
    const auto found = std::find_if(tags.begin(), tags.end(),
                                    [tag](const RawTag& present) { return present.tag == tag; });
    return found == tags.end() ? nullptr : &*found;
}

std::uint64_t CheckedPage::Number(std::uint16_t tag, std::uint64_t otherwise) const
{
    const RawTag* const found = Find(tag);
    const auto numbers = found == nullptr ? std::vector<std::uint64_t>() : file->Numbers(*found, 1);
    return numbers.empty() ? otherwise : numbers[0];
}

bool CheckedPage::IsSeparated() const
{
    return photometric == PHOTOMETRIC_SEPARATED;
}

std::uint64_t CheckedPage::CountInks() const
{
    if (IsSeparated() && numberOfInks)
        return *numberOfInks;
    return channels - std::min<std::uint64_t>(channels, extraKinds.size());
}

std::uint64_t CheckedPage::HighestSample() const
{
    return (std::uint64_t{1} << std::min<std::uint64_t>(bits, 63)) - 1;
}

CheckedPage ReadCheckedPage(const RawTiff& file, int number, std::vector<RawTag> tags)
{
    CheckedPage page;
    page.file = &file;
    page.page = number;
    page.tags = std::move(tags);
    page.width = page.Number(TIFFTAG_IMAGEWIDTH, 0);
    page.height = page.Number(TIFFTAG_IMAGELENGTH, 0);
    page.channels = page.Number(TIFFTAG_SAMPLESPERPIXEL, 1);
    page.bits = page.Number(TIFFTAG_BITSPERSAMPLE, 1);
    page.photometric = page.Number(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    page.compression = page.Number(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    page.separate = page.Number(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    if (const RawTag* const extras = page.Find(TIFFTAG_EXTRASAMPLES))
        page.extraKinds = file.Numbers(*extras, mostNumbers);
    page.inkSet = OptionalNumber(page, TIFFTAG_INKSET);
    page.numberOfInks = OptionalNumber(page, TIFFTAG_NUMBEROFINKS);
    if (const RawTag* const names = page.Find(TIFFTAG_INKNAMES))
        page.inkNames = SplitNames(file.Bytes(*names, mostNameBytes));
    if (const RawTag* const range = page.Find(TIFFTAG_DOTRANGE))
        page.dotRange = file.Numbers(*range, mostNumbers);
    return page;
}

} // namespace zvk::Pelkraft::Client
