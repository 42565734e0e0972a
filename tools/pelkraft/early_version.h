#pragma once

#include "tools/pelkraft/pattern_text.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace zvk::Pelkraft::Client {

// The version as the check ahead of the parser reads it: from the first bytes VERSION anywhere in
// the text, in a comment too, and the piece behind them. Nothing without either. place becomes
// that of the bytes, if they are there.
std::optional<std::int32_t> ReadEarlyVersion(std::string_view text, TextSpan& place);

} // namespace zvk::Pelkraft::Client
