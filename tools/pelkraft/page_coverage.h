#pragma once

#include "tools/pelkraft/coverage_map.h"
#include "tools/pelkraft/coverage_window.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/page_inks.h"
#include "tools/pelkraft/page_resolution.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The side of a square window.
struct WindowSize
{
    double length = 1;
    // "mm", "in" or "px".
    std::string unit = "mm";
};

// Reads a length and its unit, as in 1mm; anything else is wrong usage.
WindowSize ReadWindowSize(const std::string& words);

// A number of percent, in thousandths.
std::uint64_t ReadLimit(const std::string& words);

// Everything that is known of a page before its samples are counted.
struct CoveragePlan
{
    TiffPicture picture;
    PageResolution resolution;
    InkCodes codes;
    std::vector<PageInk> inks;
    // None where the page has no resolution and the size wants one.
    std::optional<WindowShape> window;
    // The size asks for a window that reaches beyond the page.
    bool windowIsCut = false;
    // Sums of a pixel above this are above the limit.
    std::uint64_t threshold = 0;

    // The amount of full ink.
    std::uint64_t Full() const;
    std::uint64_t Pixels() const { return std::uint64_t{picture.width} * picture.height; }
};

CoveragePlan PlanCoverage(const TiffFile& file, const InputOptions& input, const WindowSize& window,
                          std::uint64_t limit);

// An ink of a page, in amounts of which the plan's Full() is all.
struct InkAmounts
{
    std::uint64_t sum = 0;
    std::uint32_t largest = 0;
};

// The counts of a page, which are exact.
struct PageCoverage
{
    std::vector<InkAmounts> inks;
    // All inks of a pixel together.
    std::uint64_t sum = 0;
    LargestSum largest;
    std::uint64_t pixelsAbove = 0;
    LargestSum window;
};

// Counts the page at which the file stands. map may be null.
PageCoverage CountCoverage(const TiffFile& file, const CoveragePlan& plan, CoverageMap* map,
                           int threads, Progress& progress);

} // namespace zvk::Pelkraft::Client
