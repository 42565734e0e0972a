#pragma once

#include "tests/tools/path_text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft::TestSupport {

// A folder of its own for runs of the program, with one in it for what they write to their streams.
class ToolFolder
{
public:
    ToolFolder()
    {
        const auto temporary = std::filesystem::temp_directory_path();
        std::random_device random;
        do {
            folder = TextOf(temporary / ("pelkraft-" + std::to_string(random())));
        } while (!std::filesystem::create_directory(PathOf(folder)));
        std::filesystem::create_directory(PathOf(Streams()));
    }
    ~ToolFolder() { std::filesystem::remove_all(PathOf(folder)); }
    ToolFolder(const ToolFolder&) = delete;
    ToolFolder& operator=(const ToolFolder&) = delete;

    std::string Path(const std::string& name) const { return folder + "/" + name; }
    std::string Streams() const { return Path("streams"); }

    [[nodiscard]] static std::string Bytes(const std::string& path)
    {
        std::ifstream file(PathOf(path), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }

    static void WriteBytes(const std::string& path, const std::string& bytes)
    {
        std::ofstream(PathOf(path), std::ios::binary) << bytes;
    }

    // All names in the folder but that of the streams.
    [[nodiscard]] std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(PathOf(folder))) {
            if (!entry.is_directory())
                names.push_back(TextOf(entry.path().filename()));
        }
        std::sort(names.begin(), names.end());
        return names;
    }

protected:
    std::string folder;
};

} // namespace zvk::Pelkraft::TestSupport
