#pragma once

#include "tools/pelkraft/page_tags.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

namespace zvk::Pelkraft::Client {

// A lossless compression for the new page: the old one where it can hold the new samples.
std::uint16_t ChooseCompression(const TiffPicture& from, const TiffPicture& to);

// Describes the new page: its shape as in to, the rest copied from the page at which from stands.
void WriteTags(const TiffFile& from, const TiffFile& out, const TiffPicture& to,
               const PageTags& tags);

} // namespace zvk::Pelkraft::Client
