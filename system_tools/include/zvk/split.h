// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "zvk/system_tools_export.h"

#include <string>
#include <vector>

namespace zvk {

// Cuts text at every occurrence of a delimiter, the first in the list that matches where several
// do; an empty delimiter is passed over. Empty pieces are dropped unless keepEmpty.
ZVK_SYSTEM_TOOLS_EXPORT std::vector<std::string>
split(const std::string& text, const std::vector<std::string>& delimiters, bool keepEmpty);

} // namespace zvk
