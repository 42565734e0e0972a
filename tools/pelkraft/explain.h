#pragma once

#include "tools/pelkraft/page_conversion.h"

#include <string>

namespace zvk::Pelkraft::Client {

// The plan of a page in words: formats, passes with what they change, road, tones, polarity and
// the order of bits.
std::string ExplainPage(const PagePlan& plan, const ConvertOptions& options, int page);

} // namespace zvk::Pelkraft::Client
