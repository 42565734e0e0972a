#pragma once

#include "tools/pelkraft/pattern_report.h"

#include <string>

namespace zvk::Pelkraft::Page {

// A JSON object tells the editor what the program's report leaves out: the places, as offset and
// length in bytes or null, of all that the table shows; the looks of inks; and whether an engine
// that draws takes the text.
std::string PlacesJson(const Client::PatternReport& report);

} // namespace zvk::Pelkraft::Page
