#pragma once

#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/page_tags.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/row_plan.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// Everything that is known of a page that is to be split before its first row. On a plate 0 is
// full ink: a sample of high ink is turned, v to max - v.
struct SplitPlan
{
    TiffPicture from;
    InkCodes codes;
    bool turned = false;
    // The channel of each plate, and its ink.
    std::vector<int> channels;
    std::vector<std::string> inks;
    // The same for all plates.
    TiffPicture to;
    PageTags tags;
    RowPlan rows;
};

// Plans the page at which the file stands. list has channels by number or name, and without one
// every ink gets a plate.
SplitPlan PlanSplit(const TiffFile& file, const InputOptions& input, const std::string& list,
                    const OutputOptions& output);

// Writes a page of each plate, tags and rows.
void SplitPage(const TiffFile& file, const std::vector<const TiffFile*>& plates,
               const SplitPlan& plan, int threads, Progress& progress);

} // namespace zvk::Pelkraft::Client
