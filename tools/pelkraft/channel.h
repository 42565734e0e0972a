#pragma once

#include "pattern/pattern_words.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// The role of one channel of a page.
struct Channel
{
    // Empty where neither a tag nor the photometric kind gives it a name.
    std::string name;
    // A second name that finds it, or none.
    std::string otherName = {};
    // Beyond the colour channels: what the extra-sample tag says of it, 0 for nothing.
    bool extra = false;
    std::uint16_t extraKind = 0;
    // True if its samples are an amount of ink or of a colour. On pages of inks all channels hold
    // ink but alpha channels; on pages of other colours extra samples mean something else.
    bool ink = true;

    // Names count in any case of letters.
    bool Bears(const std::string& wanted) const
    {
        const std::string upper = UpperCase(wanted);
        return !wanted.empty() && (UpperCase(name) == upper || UpperCase(otherName) == upper);
    }
    bool IsAlpha() const { return extra && extraKind != 0; }
};

} // namespace zvk::Pelkraft::Client
