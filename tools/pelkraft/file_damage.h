#pragma once

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// A file that libtiff does not make sense of, looked at byte by byte.
struct OddFile
{
    int descriptor;
    std::uint64_t size;
};

// Tells what the file is instead of a TIFF file, or where it is cut off. Empty if neither is known.
std::string DamageWords(const OddFile& file);

// Tells where the directory after the one at this place is cut off; empty if it is whole. page
// counts the next one.
std::string NextPageDamageWords(const OddFile& file, std::uint64_t offset, int page);

} // namespace zvk::Pelkraft::Client
