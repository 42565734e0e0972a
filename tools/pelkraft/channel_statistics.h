#pragma once

#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft::Client {

// The samples of one channel of a page, counted exactly.
struct ChannelStatistics
{
    std::uint64_t samples = 0;
    std::uint64_t sum = 0;
    std::uint32_t lowest = UINT32_MAX;
    std::uint32_t highest = 0;
    // Samples of some ink.
    std::uint64_t used = 0;

    void Add(const ChannelStatistics& other);
    double Mean() const { return static_cast<double>(sum) / static_cast<double>(samples); }
    double UsedShare() const { return static_cast<double>(used) / static_cast<double>(samples); }
};

// Counts the page at which the file stands. Samples beyond that of no ink have none either.
std::vector<ChannelStatistics> CountSamples(const TiffFile& file, const TiffPicture& picture,
                                            const std::vector<InkCodes>& codes, int threads);

} // namespace zvk::Pelkraft::Client
