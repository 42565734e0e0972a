#pragma once

#include "tools/pelkraft/raw_directory.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// The tags of a page that the rules ask for, as they stand in the file.
struct CheckedPage
{
    const RawTiff* file = nullptr;
    int page = 1;
    std::vector<RawTag> tags;
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t channels = 1;
    std::uint64_t bits = 1;
    std::uint64_t photometric = 0;
    std::uint64_t compression = 1;
    bool separate = false;
    std::vector<std::uint64_t> extraKinds;
    std::optional<std::uint64_t> inkSet;
    std::optional<std::uint64_t> numberOfInks;
    std::optional<std::vector<std::string>> inkNames;
    std::optional<std::vector<std::uint64_t>> dotRange;

    const RawTag* Find(std::uint16_t tag) const;
    // The first value of a tag, or what stands for it.
    std::uint64_t Number(std::uint16_t tag, std::uint64_t otherwise) const;
    bool IsSeparated() const;
    // Channels that are colours or inks, so far as the tags tell.
    std::uint64_t CountInks() const;
    std::uint64_t HighestSample() const;
};

CheckedPage ReadCheckedPage(const RawTiff& file, int page, std::vector<RawTag> tags);

} // namespace zvk::Pelkraft::Client
