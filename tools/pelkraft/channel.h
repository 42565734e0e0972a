#pragma once

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::Client {

// The role of one channel of a page.
struct Channel
{
    // Empty where neither a tag nor the photometric kind gives it a name.
    std::string name;
    // Beyond the colour channels: what the extra-sample tag says of it, 0 for nothing.
    bool extra = false;
    std::uint16_t extraKind = 0;
    // True if its samples are an amount of ink or of a colour. On pages of inks all channels hold
    // ink but alpha channels; on pages of other colours extra samples mean something else.
    bool ink = true;

    bool IsAlpha() const { return extra && extraKind != 0; }
};

} // namespace zvk::Pelkraft::Client
