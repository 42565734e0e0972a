#pragma once

#include "tools/pelkraft/json.h"
#include "tools/pelkraft/page_facts.h"

#include <string>
#include <vector>

namespace zvk::Pelkraft::Client {

// A file and what was read of it.
struct FileFacts
{
    std::string path;
    std::uint64_t bytes = 0;
    bool bigForm = false;
    bool bigEndian = false;
    std::vector<PageFacts> pages;
};

std::string InfoWords(const FileFacts& file);
Json InfoJson(const FileFacts& file);

} // namespace zvk::Pelkraft::Client
