#pragma once

namespace zvk::Pelkraft::Client {

// Reports on the standard error stream that memory ran out. Needs none itself.
void PrintOutOfMemory() noexcept;

// Ends the program at once where missing memory leaves nobody to catch it: the line, no temporary
// file, the code for it.
[[noreturn]] void EndForMemory() noexcept;

} // namespace zvk::Pelkraft::Client
