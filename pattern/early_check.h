#pragma once

#include "pattern/tokenizer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zvk::Pelkraft {

// zvk::split, which is not part of the grammar.
using SplitFunction = std::vector<std::string> (*)(const std::string& text,
                                                   const std::vector<std::string>& delimiters,
                                                   bool keepEmpty);

// The version by the first bytes VERSION anywhere in the text, in a comment too, and the piece
// after them. Nothing without either. place becomes that of the bytes, if they are there.
std::optional<std::int32_t> FindEarlyVersion(std::string_view text, SplitFunction split,
                                             TextSpan& place);

// Looks at a text before anything is built from it and gives the version that selects the
// generation of the random sources. Knows nothing of tokens, quotes and comments. Throws.
std::int32_t CheckPatternText(const char* text, SplitFunction split);

} // namespace zvk::Pelkraft
