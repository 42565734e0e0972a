#pragma once

#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/sample_map.h"

#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Tells how the samples of a page are to be written as such again.
struct RangeRequest
{
    // By channel: true for colours and inks. Other samples mean something else, and follow the
    // depth alone.
    std::vector<bool> inks;
    int newBits = 8;
    bool invert = false;
};

// The samples of no ink and of full ink on the old page and on the new one, and the work that takes
// one to the other.
struct InkRange
{
    InkCodes old;
    InkCodes fresh;
    // The library does the work, unless the samples follow lines.
    std::optional<SampleLines> lines;
    bool invert = false;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    // The range in the tags of the new page.
    std::optional<DotRange> tag;
    // A sample of no ink, for channels that are empty.
    int empty = 0;
    // They name what no tag can say.
    std::vector<std::string> losses;
};

// Reads the codes of the page at which the file stands and plans those of the new page.
InkRange PlanInkRange(const TiffFile& file, const TiffPicture& picture, const InputOptions& input,
                      const RangeRequest& request);

bool IsGray(std::uint16_t photometric);

} // namespace zvk::Pelkraft::Client
