#pragma once

#include <cstddef>

namespace zvk::Pelkraft::TestSupport {

// Asks the tool that this program runs under about its memory: MemorySanitizer, which it is
// compiled with, or valgrind's memcheck.

// Null without such a tool.
const char* ShadowTool();

// The highest processor level whose instructions the tool follows bit by bit.
int HighestFollowedLevel();

void MarkUndefined(void* memory, std::size_t bytes);
// The first byte of which a bit is undefined; `bytes` if there is none.
std::size_t FirstUndefined(const void* memory, std::size_t bytes);

} // namespace zvk::Pelkraft::TestSupport
