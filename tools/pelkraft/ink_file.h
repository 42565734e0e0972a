#pragma once

#include "tools/pelkraft/ink_colours.h"

#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// Adds the inks of an ink file to the table. Each line holds a name, a colour as #RRGGBB, an
// opacity from 0 to 1 and, if it is not 1, a strength from 0 to 1; a name with blanks stands in
// double quotes. Lines that begin with # are passed over. Answers what is wrong with the first line
// that is none of these, or nothing.
std::string AddInks(std::string_view text, InkTable& inks);

// Loads an ink file. One that is wrong is a bad input file.
InkTable LoadInkFile(const std::string& path);

} // namespace zvk::Pelkraft::Client
