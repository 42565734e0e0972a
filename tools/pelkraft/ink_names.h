#pragma once

#include "tools/pelkraft/channel.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// True for the kinds of pages whose samples are amounts of ink: separated, MinIsWhite and
// MinIsBlack.
bool IsPageOfInks(std::uint16_t photometric);

// The name of a channel that has none.
std::string NumberedName(std::size_t channel);

// The channels of the page at which the file stands, in their order.
std::vector<Channel> ReadChannels(const TiffFile& file, const TiffPicture& picture);

// The names in the page's own tag; empty where it has none.
std::vector<std::string> ReadInkTags(const TiffFile& file);

} // namespace zvk::Pelkraft::Client
