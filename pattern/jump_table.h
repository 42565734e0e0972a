#pragma once

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

using JumpTable = std::array<std::uint16_t, 65536>;

// The place in the field at which a row starts, by row number. Built at the first call, which
// may come from several threads at once, and never freed.
const JumpTable& GetJumpTable();

} // namespace zvk::Pelkraft
