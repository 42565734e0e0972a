#pragma once

#include <filesystem>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// Paths in the tests are texts in UTF-8, whatever the system's own form is.
inline std::filesystem::path PathOf(const std::string& text)
{
    return std::u8string(text.begin(), text.end());
}

inline std::string TextOf(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

} // namespace zvk::Pelkraft::TestSupport
