#pragma once

#include <string>

namespace zvk::Pelkraft::Client {

// Reads a regular file of up to 1 MiB. kind says what it should be, such as "a pattern text".
std::string ReadSmallFile(const std::string& path, const std::string& kind);

} // namespace zvk::Pelkraft::Client
