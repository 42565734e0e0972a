#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// A text with its first piece of this kind replaced, which must be there.
inline std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    const std::size_t at = text.find(from);
    EXPECT_NE(std::string::npos, at) << from;
    return text.replace(at, from.size(), to);
}

} // namespace zvk::Pelkraft::TestSupport
