#pragma once

#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/ink_names.h"
#include "tools/pelkraft/ink_range.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The tags of a page that depend on the work on its samples.
struct PageTags
{
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    // Profile and whatever else describes these very colours.
    bool keepColourTags = true;
    // Curves and hints, which are in sample values.
    bool keepValueTags = true;
    // Tags that libtiff carries without knowing them.
    std::vector<std::uint32_t> otherTags;
    // The samples of no ink and of full ink, where they are not those of the old page.
    std::optional<DotRange> dotRange;
    std::optional<std::uint16_t> inkSet;
    std::optional<std::uint16_t> numberOfInks;
    std::vector<std::string> inkNames;
    std::vector<std::uint16_t> extraKinds;
    int repeat = 1;
    // They say what is not kept and why, and where the new samples and the photometric kind don't
    // go together.
    std::vector<std::string> warnings;
};

// Tags for a page whose channels come from map, all in their order if it is empty, and whose
// samples get a new depth and range.
PageTags PlanTags(const TiffFile& file, const TiffPicture& picture,
                  const std::vector<Channel>& channels, const std::vector<int>& map, int newBits,
                  const InkRange& range);

// Adds a warning for each ink whose name another one bears, in any case of letters.
void WarnOfTwins(PageTags& tags);

} // namespace zvk::Pelkraft::Client
