#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// The way that a page is to be turned before somebody looks at it, by its tag: 1 for pages that
// stand as they are stored, and where the tag is missing or holds anything but 1 to 8.
std::uint16_t ReadOrientation(const TiffFile& file);

// Says where the first stored row and the first stored pixel of a row belong, and how that turns
// the picture.
std::string OrientationWords(std::uint64_t orientation);

// Warns that a page is taken as it is stored, where its tag wants it turned.
void WarnOfOrientation(const TiffFile& file, const std::string& what);

} // namespace zvk::Pelkraft::Client
