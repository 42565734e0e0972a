#pragma once

#include "tools/pelkraft/tiff_file.h"

namespace zvk::Pelkraft::Client {

// Pixels per metre of a page, or 0 where it doesn't tell.
struct PageResolution
{
    double across = 0;
    double down = 0;
};

PageResolution ReadResolution(const TiffFile& file);

// Pixels wider than high are shown so: the height of one for a width of 1.
double PixelHeight(const TiffFile& file);

} // namespace zvk::Pelkraft::Client
