#pragma once

#include "tools/pelkraft/pattern_report.h"

#include <string>

namespace zvk::Pelkraft::Page {

// What the editor must know of a text beside the program's report: the places, as offset and
// length in bytes or null, of all that the table shows; the looks of inks; and whether an engine
// that draws takes the text. A JSON object.
std::string PlacesJson(const Client::PatternReport& report);

} // namespace zvk::Pelkraft::Page
