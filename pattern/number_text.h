#pragma once

#include <cstdint>
#include <string_view>

namespace zvk::Pelkraft {

// White space and a sign may lead; any byte but a digit ends the number. Text without
// a number is 0, and a number beyond 32 bits is the nearest one within.
std::int32_t ReadNumber(std::string_view text);

} // namespace zvk::Pelkraft
