#pragma once

#include "tools/pelkraft/raw_directory.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// Tells what the file is instead of a TIFF file, or where it is cut off. Empty if neither is known.
std::string DamageWords(const FileBytes& file);

// Tells where the directory after the one at this place is cut off; empty if it is whole. page
// counts the next one.
std::string NextPageDamageWords(const FileBytes& file, std::uint64_t offset, int page);

} // namespace zvk::Pelkraft::Client
