#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zvk::Pelkraft::Client {

// Control characters would act on a terminal, and those that turn the direction of writing would
// show another text: each of their bytes becomes a question mark, and so does each that is no
// UTF-8. Tabs stay.
std::string Shown(std::string_view text);

// Columns that a terminal takes for such a text at most: letters that may be wide count twice.
std::size_t ShownColumns(std::string_view text);

// Such a text with spaces after it, or ahead of it, so that it takes at least so many columns.
std::string PaddedRight(std::string text, std::size_t columns);
std::string PaddedLeft(const std::string& text, std::size_t columns);

// The end of such a text, as far as it fits so many columns.
std::string LastColumns(const std::string& text, std::size_t columns);

// True for a byte that goes on with a character of UTF-8.
inline bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace zvk::Pelkraft::Client
