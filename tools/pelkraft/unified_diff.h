#pragma once

#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// The difference of two texts of as many lines, each of which stands for the one of the same
// number, as patch reads it. Empty where they are equal.
std::string UnifiedDiff(const std::string& path, std::string_view oldText,
                        std::string_view newText);

} // namespace zvk::Pelkraft::Client
