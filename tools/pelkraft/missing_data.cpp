#include "tools/pelkraft/missing_data.h"

#include "tools/pelkraft/stored_tags.h"

#include <algorithm>
#include <vector>

namespace zvk::Pelkraft::Client {
namespace {

// The places of more are not held.
constexpr std::size_t mostBlocks = std::size_t{1} << 22;

} // namespace

std::string MissingBlockWords(const std::string& name, std::uint64_t count, std::uint64_t bytes,
                              std::uint64_t offset, std::uint64_t fileSize)
{
    return "is truncated: its " + name + " of " + std::to_string(count) + " has " +
           std::to_string(bytes) + " bytes from byte " + std::to_string(offset) +
           " on, and the file ends after " + std::to_string(fileSize) + "; get a whole copy of it";
}

std::string MissingDataWords(const TiffFile& file)
{
    const bool tiled = TIFFIsTiled(file.Get()) != 0;
    const std::vector<std::uint64_t> offsets =
        StoredNumbers(file, tiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, mostBlocks);
    const std::vector<std::uint64_t> counts =
        StoredNumbers(file, tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, mostBlocks);
    for (std::size_t block = 0; block < std::min(offsets.size(), counts.size()); ++block) {
        if (offsets[block] > file.Size() || counts[block] > file.Size() - offsets[block])
            return MissingBlockWords((tiled ? "tile " : "strip ") + std::to_string(block + 1),
                                     offsets.size(), counts[block], offsets[block], file.Size());
    }
    return {};
}

} // namespace zvk::Pelkraft::Client
