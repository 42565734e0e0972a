#pragma once

#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// The system's own form of a text, and back. What is no text becomes U+FFFD.
std::wstring Wide(std::string_view text);
std::string Utf8(std::wstring_view text);

} // namespace zvk::Pelkraft::Client
