#pragma once

#include "pattern/tokenizer.h"
#include "pelkraft/dot_weave_pattern.h"

#include <optional>
#include <string>

namespace zvk::Pelkraft {

// Finds the piece of a text for which X86, or else the vector engine, refuses it with words. There
// is none where what is missing stands nowhere, or where in-colours together ask for too many
// values. A rule that an in-colour breaks is found at the name that its block gives it.
std::optional<TextSpan> FindTextFault(const std::string& text, DotWeavePattern::Engine engine);

} // namespace zvk::Pelkraft
