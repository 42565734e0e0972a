#pragma once

#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/progress.h"
#include "tools/pelkraft/row_plan.h"
#include "tools/pelkraft/row_readers.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The shape of a row as readers give it and writers take it.
RowShape ShapeOf(const TiffPicture& picture);

// Cuts the new page into strips, in the compression that was chosen, or else in one that can hold
// its samples.
void PlanStrips(const TiffPicture& from, TiffPicture& to, const OutputOptions& options);

// The work on every row of a page. A refusal names the file.
RowPlan PlanRows(const TiffFile& file, const RowRequest& request);

// Rows that are held at once.
std::uint32_t BandRows(const TiffPicture& from, const TiffPicture& to);

// A page to be read, and the one to be written in its place, of as many rows.
struct PageRows
{
    const TiffFile& file;
    const TiffFile& out;
    const TiffPicture& from;
    const TiffPicture& to;
    // An interrupt names the file under this path.
    const std::string& output;
    int threads;
    RowOrder order = {};
    // New rows are old rows as they are.
    bool same = false;
};

// The work of a thread on one row.
using RowWork = std::function<void(int worker, std::int64_t row, const unsigned char* oldRow,
                                   unsigned char* newRow)>;

// Reads a band, works on it with all threads, and writes it beside the next; again and again, up to
// the end of the page. Each new row is shown after it has been written.
void WriteRows(const PageRows& page, const RowWork& work,
               const std::function<void(const unsigned char* newRow)>& show, Progress& progress);

} // namespace zvk::Pelkraft::Client
