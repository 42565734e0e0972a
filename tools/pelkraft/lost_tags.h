#pragma once

#include "tools/pelkraft/page_tags.h"
#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Looks through the tags of the page at which the file stands. Those that the new page can't have
// get a warning; those that libtiff can carry as they are, whatever they mean, are noted.
// changeOfSamples says why tags in sample values can't stay; it is empty where they can.
void AddLosses(const TiffFile& file, const std::string& changeOfSamples, PageTags& tags);

// Copies the tags that were noted.
void CarryTags(const TiffFile& from, const TiffFile& out, const std::vector<std::uint32_t>& tags);

} // namespace zvk::Pelkraft::Client
