#pragma once

#include <string>

namespace zvk::Pelkraft::Client {

// Writes a file of these bytes, whole or not at all.
void WriteWholeFile(const std::string& path, const std::string& bytes);

// To the standard output stream; a stream that takes no more is a failure to write.
void PrintText(const std::string& text);

} // namespace zvk::Pelkraft::Client
