#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zvk::Pelkraft {

// No locale has a say in either.

// ASCII letters alone: a byte of a longer character never changes.
std::string UpperCase(std::string name);

// White space and a sign may lead; any byte but a digit ends the number. Text without
// a number is 0, and a number beyond 32 bits is the nearest one within.
std::int32_t ReadNumber(std::string_view text);

} // namespace zvk::Pelkraft
