#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// The numbers of a tag as they stand in the file, for the page at which it stands: libtiff changes
// some of them, and leaves out those of which there are more than usual. None without the tag.
std::vector<std::uint64_t> StoredNumbers(const TiffFile& file, std::uint16_t tag, std::size_t most);

} // namespace zvk::Pelkraft::Client
