#pragma once

#include "tools/pelkraft/tiff_file.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// A strip or tile that the file ends before, in words.
std::string MissingBlockWords(const std::string& name, std::uint64_t count, std::uint64_t bytes,
                              std::uint64_t offset, std::uint64_t fileSize);

// The first of the strips or tiles of the page, as the file counts them, that the file ends
// before; empty where all are there. No sample is read.
std::string MissingDataWords(const TiffFile& file);

} // namespace zvk::Pelkraft::Client
