#pragma once

#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The role of one channel of a page.
struct Channel
{
    // Empty where neither a tag nor the photometric kind gives it a name.
    std::string name;
    // Beyond the colour channels: what the extra-sample tag says of it.
    bool extra = false;
    std::uint16_t extraKind = EXTRASAMPLE_UNSPECIFIED;
    // True if its samples are an amount of ink or of a colour. On pages of inks all channels hold
    // ink but alpha channels; on pages of other colours extra samples mean something else.
    bool ink = true;

    bool IsAlpha() const { return extra && extraKind != EXTRASAMPLE_UNSPECIFIED; }
};

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
