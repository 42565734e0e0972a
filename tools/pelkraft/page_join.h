#pragma once

#include "tools/pelkraft/ink_codes.h"
#include "tools/pelkraft/page_tags.h"
#include "tools/pelkraft/plate_set.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/row_plan.h"
#include "tools/pelkraft/tiff_picture.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A page of one plate. Samples of low ink are turned, v to max - v.
struct JoinedPlate
{
    TiffPicture picture;
    InkCodes codes;
    bool turned = false;
};

// Everything that is known of a joined page before its first row.
struct JoinPlan
{
    std::vector<JoinedPlate> plates;
    TiffPicture to;
    PageTags tags;
    RowPlan rows;
};

// Plans the page at which all plates stand, and refuses here what doesn't fit together. The
// compression is that of the first plate unless the options have another.
JoinPlan PlanJoin(const PlateGroup& group, const std::vector<TiffFile>& files,
                  const InputOptions& input, const OutputOptions& output);

// Writes the page, tags and rows.
void JoinPage(const std::vector<TiffFile>& files, const TiffFile& out, const JoinPlan& plan,
              int threads, Progress& progress);

} // namespace zvk::Pelkraft::Client
