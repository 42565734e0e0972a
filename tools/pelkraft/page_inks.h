#pragma once

#include "tools/pelkraft/ink_layers.h"
#include "tools/pelkraft/tiff_file.h"
#include "tools/pelkraft/tiff_picture.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// An ink of a page, and the sample of a pixel that holds it.
struct PageInk
{
    std::string name;
    std::size_t sample = 0;
};

// Refuses pages of other colours than inks, and says what would do.
void RefuseOtherColours(const TiffPicture& picture, const std::string& path);

// The inks of the page at which the file stands, in its order, without its alpha channels. The one
// ink of a gray page is black. Pages of other colours are refused.
std::vector<PageInk> ReadPageInks(const TiffFile& file, const TiffPicture& picture);

// Sorts the inks as they are printed: those that are listed first, in this order, the others after
// them. A name that is no ink of the page, and one that stands there twice, is wrong usage.
void SortByPrintOrder(std::vector<PageInk>& inks, const std::vector<std::string>& order,
                      const std::string& path);

// The warnings of inks whose looks nobody knows: about a file, with what gives an ink its own look,
// and each ink once for all of told.
struct LookWarnings
{
    const std::string& path;
    std::string (*advice)(const std::string& ink);
    std::set<std::string>& told;
};

// Gives inks their looks, and names those that the table doesn't know with the colours that they
// got.
std::vector<InkLayer> LayersOf(const std::vector<PageInk>& inks, const InkTable& table,
                               const LookWarnings& warnings);

} // namespace zvk::Pelkraft::Client
