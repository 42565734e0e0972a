#pragma once

#include "system_tools/line_buffer.h"

namespace zvk::Diagnostics {

// The code point at the front of a text that ends with a zero; text moves on past it. Neither
// fails: a byte that belongs to no valid UTF-8 sequence stands for itself, as in Latin-1, and a
// wide character that is no code point becomes the replacement character.
char32_t TakeCodePoint(const char*& text);
char32_t TakeCodePoint(const wchar_t*& text);

// Appends it as UTF-8, or in the platform's wide form.
void PutCodePoint(LineBuffer<char>& line, char32_t codePoint);
void PutCodePoint(LineBuffer<wchar_t>& line, char32_t codePoint);

} // namespace zvk::Diagnostics
