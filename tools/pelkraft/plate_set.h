#pragma once

#include "tools/pelkraft/image_options.h"
#include "tools/pelkraft/tiff_file.h"

#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A plate as the command line names it.
struct PlateArgument
{
    std::string path;
    std::string ink;
    // PlateName tells what these are. Both are empty where the command line gives the ink.
    std::string base;
    std::string page;
};

// Reads "NAME=PLATE", or a path whose file name tells the ink. Before an equals sign of a path
// there is a slash.
PlateArgument ReadPlateArgument(const std::string& argument);

// The plates of pages that were separated at once, in the order of their inks.
using PlateGroup = std::vector<PlateArgument>;

// Sorts plates into pages by what their file names have before the ink, whatever folders they are
// in: one page, unless an ink comes more than once. Two plates of one ink that belong to no
// different pages are refused. Every page has the same inks. list is an order of inks as of
// PlateOrder.
std::vector<PlateGroup> GroupPlates(const std::vector<PlateArgument>& plates,
                                    const std::string& list);

// The open plates of a group. All have the same number of pages.
std::vector<TiffFile> OpenPlates(const PlateGroup& group, const Spool& spool);

} // namespace zvk::Pelkraft::Client
