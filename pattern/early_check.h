#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// Looks at a text before anything is built from it and gives the version that selects the
// generation of the random sources. Knows nothing of tokens, quotes and comments. Throws.
std::int32_t CheckPatternText(const char* text);

} // namespace zvk::Pelkraft
