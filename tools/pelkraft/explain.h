#pragma once

#include "tools/pelkraft/json.h"
#include "tools/pelkraft/page_conversion.h"

#include <string>

namespace zvk::Pelkraft::Client {

// The plan of a page in words: formats, the steps of the library and of the client, road, tones,
// polarity and the order of bits. It follows the label of the page on the same line.
std::string ExplainPage(const PagePlan& plan, const ConvertOptions& options);
// The road alone, and the samples of no ink and of full ink.
std::string ChoiceOf(const PagePlan& plan);
// The whole for programs.
Json ExplainPageJson(const PagePlan& plan, const ConvertOptions& options, int page);

} // namespace zvk::Pelkraft::Client
