#pragma once

#include <string>

namespace zvk::Pelkraft {

// ASCII letters alone: a byte of a longer character never changes.
std::string UpperCase(std::string name);

} // namespace zvk::Pelkraft
