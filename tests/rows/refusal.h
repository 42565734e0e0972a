#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// Says how an operation ended. Only a failure thrown as const char* gives its bare words; any other
// end stands in angle brackets, so that it can't pass for a text.
[[nodiscard]] std::string EndOf(const std::function<void()>& operation);

// The lines that it logged, whatever it threw, but for those of the guards.
[[nodiscard]] std::vector<std::wstring> LinesOf(const std::function<void()>& operation);

// All of them.
[[nodiscard]] std::vector<std::wstring> AllLinesOf(const std::function<void()>& operation);

extern const char* const returned;
extern const char* const outOfMemory;

} // namespace zvk::Pelkraft::TestSupport
