#pragma once

#include "pelkraft/dot_weave_pattern.h"
#include "tests/pattern/naive_pattern.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

using Engine = DotWeavePattern::Engine;

// The constructor takes a text that it doesn't write to.
DotWeavePattern Load(const std::string& text, Engine engine);
std::string Refusal(const std::string& text, Engine engine);

// Applies one row to a destination that held other bytes before.
Bytes Apply(DotWeavePattern& pattern, const Bytes& source);

// Some of these random steps are above the highest.
Bytes RandomSteps(std::size_t size, std::uint32_t seed);

} // namespace zvk::Pelkraft::TestSupport
