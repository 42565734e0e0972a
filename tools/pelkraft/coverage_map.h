#pragma once

#include "tools/pelkraft/page_resolution.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A picture of how much ink lies where, at most 1600 pixels on a side: the mean of all pixels of a
// page that fall into one of it.
class CoverageMap
{
public:
    CoverageMap(std::uint32_t newWidth, std::uint32_t newHeight, const PageResolution& resolution);

    // Takes the sums of the pixels of the next row.
    template <typename Total>
    void AddRow(const Total* totals);

    // The bytes of a PNG: white without ink, over blue to yellow at the limit, red above it. full
    // is the sum that counts as 100 %, and the limit is in thousandths of a percent.
    std::string Png(std::uint64_t full, std::uint64_t limit) const;

private:
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t shownWidth;
    std::uint32_t shownHeight;
    std::uint32_t nextRow = 0;
    std::uint32_t shownRow = 0;
    std::vector<std::uint64_t> sums;
};

} // namespace zvk::Pelkraft::Client
