#pragma once

#include "tools/pelkraft/channel_statistics.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/ink_names.h"
#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/profile_header.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// All that the tags of a page say of its picture.
struct PageFacts
{
    int page = 1;
    TiffPicture picture;
    // "unsigned", "signed", "floating point" or "complex".
    std::string sampleKind;
    PageResolution resolution;
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    std::optional<ProfileHeader> profile;
    std::optional<std::uint16_t> inkSet;
    std::vector<Channel> channels;
    // The samples of no and of full ink, by channel; none for pages of other colours, and where the
    // tags contradict each other, which codesFault tells.
    std::vector<InkCodes> codes;
    std::string codesFault;
    // One for each channel where they were counted.
    std::vector<ChannelStatistics> statistics;
};

// Reads the tags of the page at which the file stands, and no sample.
PageFacts ReadPageFacts(const TiffFile& file, const InputOptions& input, int page);

} // namespace zvk::Pelkraft::Client
