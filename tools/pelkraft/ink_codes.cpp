#include "tools/pelkraft/ink_codes.h"

#include "tools/pelkraft/failure.h"
#include "tools/pelkraft/stored_tags.h"

#include <algorithm>
#include <string>

namespace zvk::Pelkraft::Client {
namespace {

bool InkIsHigh(std::uint16_t photometric, Polarity polarity)
{
    if (polarity != Polarity::Auto)
        return polarity == Polarity::InkHigh;
    return photometric != PHOTOMETRIC_MINISBLACK && photometric != PHOTOMETRIC_RGB;
}

// One for each channel of a page that has so many, or one for all; none without a sound tag.
std::vector<DotRange> ReadStoredRanges(const TiffFile& file, const TiffPicture& picture)
{
    std::uint16_t none = 0;
    std::uint16_t full = 0;
    if (TIFFGetField(file.Get(), TIFFTAG_DOTRANGE, &none, &full) == 1)
        return {{none, full}};
    const auto count = 2 * static_cast<std::size_t>(picture.channels);
    const std::vector<std::uint64_t> numbers = StoredNumbers(file, TIFFTAG_DOTRANGE, count + 1);
    std::vector<DotRange> ranges;
    for (std::size_t i = 0; numbers.size() == count && i < count; i += 2)
        ranges.push_back({static_cast<int>(numbers[i]), static_cast<int>(numbers[i + 1])});
    return ranges;
}

// Only inks have a range of dots.
std::vector<DotRange> RangesOf(const TiffFile& file, const TiffPicture& picture,
                               const InputOptions& input)
{
    std::vector<DotRange> ranges;
    if (input.dotRange)
        ranges = {*input.dotRange};
    else if (picture.photometric == PHOTOMETRIC_SEPARATED)
        ranges = ReadStoredRanges(file, picture);
    if (ranges.empty())
        ranges = {{0, (1 << picture.bits) - 1}};
    ranges.resize(static_cast<std::size_t>(picture.channels), ranges.front());
    return ranges;
}

bool IsSame(const DotRange& left, const DotRange& right)
{
    return left.none == right.none && left.full == right.full;
}

} // namespace

bool HasUnequalRanges(const TiffFile& file, const TiffPicture& picture)
{
    const std::vector<DotRange> ranges = ReadStoredRanges(file, picture);
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](const DotRange& range) { return !IsSame(range, ranges.front()); });
}

std::optional<DotRange> ReadRangeTag(const TiffFile& file, const TiffPicture& picture)
{
    const std::vector<DotRange> ranges = ReadStoredRanges(file, picture);
    return ranges.empty() ? std::nullopt : std::optional(ranges.front());
}

std::vector<InkCodes> ReadChannelCodes(const TiffFile& file, const TiffPicture& picture,
                                       const InputOptions& input)
{
    const int highest = (1 << picture.bits) - 1;
    const bool high = InkIsHigh(picture.photometric, input.polarity);
    std::vector<InkCodes> codes;
    for (const DotRange& range : RangesOf(file, picture, input)) {
        if (range.none == range.full || range.none < 0 || range.none > highest || range.full < 0 ||
            range.full > highest)
            throw Failure(input.dotRange ? ExitCode::Usage : ExitCode::BadInput, file.Path(),
                          "dot range " + std::to_string(range.none) + ',' +
                              std::to_string(range.full) +
                              " is empty or exceeds the samples, which reach " +
                              std::to_string(highest) + "; --dot-range LO,HI gives another");
        codes.push_back(high ? InkCodes{range.none, range.full}
                             : InkCodes{highest - range.none, highest - range.full});
    }
    return codes;
}

InkCodes ReadInkCodes(const TiffFile& file, const TiffPicture& picture, const InputOptions& input)
{
    const std::vector<InkCodes> codes = ReadChannelCodes(file, picture, input);
    for (std::size_t i = 1; i < codes.size(); ++i) {
        if (!(codes[i] == codes[0]))
            throw Failure(ExitCode::Unsupported, file.Path(),
                          "has another dot range in channel " + std::to_string(i) +
                              " than in channel 0; pelkraft convert --dot-range full maps each to "
                              "all samples, and --dot-range LO,HI takes one for all");
    }
    return codes.empty() ? InkCodes{0, (1 << picture.bits) - 1} : codes[0];
}

} // namespace zvk::Pelkraft::Client
