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
    // The file name up to the ink; empty where the command line gives the ink.
    std::string base;
};

// Reads "NAME=PLATE", or a path whose file name tells the ink. Before an equals sign of a path
// there is a slash.
PlateArgument ReadPlateArgument(const std::string& argument);

// The plates of pages that were separated at once, in the order of their inks.
using PlateGroup = std::vector<PlateArgument>;

// Sorts plates into pages by what their names have before the ink: one page, unless an ink comes
// more than once. Every page has the same inks. list is an order of inks as of PlateOrder.
std::vector<PlateGroup> GroupPlates(const std::vector<PlateArgument>& plates,
                                    const std::string& list);

// The open plates of a group. All have the same number of pages.
std::vector<TiffFile> OpenPlates(const PlateGroup& group, const Spool& spool);

} // namespace zvk::Pelkraft::Client
