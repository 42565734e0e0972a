#pragma once

#include "tools/pelkraft/common_options.h"
#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/page_tags.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/row_plan.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The options of the command line; one that is left out is as in the file.
struct ConvertOptions
{
    InputOptions input;
    OutputOptions output;
    std::optional<bool> separate;
    std::optional<int> bits;
    std::string channels;
    int repeat = 1;
    bool mirror = false;
    bool flip = false;
    bool invert = false;
    std::optional<Tones> tones;
    bool portable = false;
    CommonOptions common;
};

// Everything that is known of a page's conversion before its first row.
struct PagePlan
{
    TiffPicture from;
    TiffPicture to;
    PageTags tags;
    InkRange range;
    RowPlan rows;
};

// Plans the page at which the file stands, and refuses here what can't be served.
PagePlan PlanPage(const TiffFile& file, const ConvertOptions& options);

// Writes the page, tags and rows. Answers whether samples exceeded the
// levels that they were cut to.
[[nodiscard]] bool ConvertPage(const TiffFile& file, const TiffFile& out, const PagePlan& plan,
                               const ConvertOptions& options, Progress& progress);

} // namespace zvk::Pelkraft::Client
