#pragma once

#include <gtest/gtest.h>

#include <string>

namespace zvk::Pelkraft::TestSupport {

// Succeeds if a text is one XML element, all others closed inside it, in printable ASCII.
::testing::AssertionResult IsWellFormed(const std::string& xml);

} // namespace zvk::Pelkraft::TestSupport
