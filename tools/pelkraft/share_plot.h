#pragma once

#include "tools/pelkraft/ink_shares.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// An SVG drawing: for every step and ink two bars over all pixels, cut by ink value; the upper
// one as the text says, the lower one as measured.
std::string DrawShares(const std::string& title, const PatternOutline& outline,
                       const std::vector<StepShares>& shares);

} // namespace zvk::Pelkraft::Client
