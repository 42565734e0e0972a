#pragma once

#include <string_view>

namespace zvk::Pelkraft::TestSupport {

// Whether a line of the log comes from a guard, for which a throw is a structured exception on
// some systems. The tests of what the clauses log pass such lines over.
inline bool IsStructuredLine(std::wstring_view line)
{
    return line.starts_with(L"Structured exception: ");
}

} // namespace zvk::Pelkraft::TestSupport
