#pragma once

#include "tools/pelkraft/pattern_text.h"

#include <cstddef>
#include <string>

namespace zvk::Pelkraft::Client {

// A text after all safe hints of its findings have been taken.
struct FixedText
{
    std::string bytes;
    // Places that have changed; none if the text is the old one.
    std::size_t changes = 0;
    // There were safe hints, but the text would load on fewer engines that draw combinations with
    // them, on none at all, or have as many findings: it is the old one.
    bool isGivenUp = false;
};

FixedText FixPattern(const PatternText& text);

} // namespace zvk::Pelkraft::Client
