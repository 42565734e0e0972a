#pragma once

#include "tests/support/naive_conversion.h"

#include <cstdint>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// FNV-1a in 64 bits: the same on every machine, and short enough to be written once more.
class Digest
{
public:
    Digest& Add(const Bytes& bytes)
    {
        for (const unsigned char byte : bytes)
            value = (value ^ byte) * 0x100000001B3U;
        return *this;
    }

    Digest& Add(const std::string& text) { return Add(Bytes(text.begin(), text.end())); }

    // 16 digits.
    std::string Hex() const
    {
        std::string text;
        for (int shift = 60; shift >= 0; shift -= 4)
            text += "0123456789abcdef"[value >> shift & 15U];
        return text;
    }

private:
    std::uint64_t value = 0xCBF29CE484222325U;
};

} // namespace zvk::Pelkraft::TestSupport
