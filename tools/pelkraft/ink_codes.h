#pragma once

#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <optional>
#include <vector>

namespace zvk::Pelkraft::Client {

// The samples of a page that stand for no ink and for full ink. None is the greater one where ink
// is low.
struct InkCodes
{
    int none = 0;
    int full = 0;

    bool operator==(const InkCodes&) const = default;
    bool InkIsHigh() const { return none < full; }
};

// The codes of each channel of the page at which the file stands: photometric kind and DotRange
// give them, unless the options do. Where ink is low, a range counts from the highest sample down.
// An empty range, and one beyond the samples, are refused.
std::vector<InkCodes> ReadChannelCodes(const TiffFile& file, const TiffPicture& picture,
                                       const InputOptions& input);

// True if the tag of the page has a pair for each channel, and these differ.
bool HasUnequalRanges(const TiffFile& file, const TiffPicture& picture);

// The range in the tags of a page of inks: that of all channels, or the first of unequal ones.
std::optional<DotRange> ReadRangeTag(const TiffFile& file, const TiffPicture& picture);

// The codes that all channels share. Where they differ, the page is refused.
InkCodes ReadInkCodes(const TiffFile& file, const TiffPicture& picture, const InputOptions& input);

} // namespace zvk::Pelkraft::Client
