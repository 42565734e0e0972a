#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// Takes a spec and two views from any bytes. A spec of any numbers must be refused or must be the
// same again after saving and loading. One of small numbers is run, and accepted and converted as
// the naive reference says. Any content of a saved record must be refused or stand for a plan.
// Gives what is wrong, or nothing.
std::string CheckAnyPlan(const std::uint8_t* bytes, std::size_t count);

} // namespace zvk::Pelkraft::TestSupport
