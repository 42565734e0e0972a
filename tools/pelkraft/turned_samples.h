#pragma once

#include <cstdint>
#include <cstring>

namespace zvk::Pelkraft::Client {

// Copies the bytes of samples as they are, or turned: no ink becomes full ink, and full ink none.
inline void CopySamples(const unsigned char* from, unsigned char* to, std::int64_t bytes,
                        bool turned)
{
    if (!turned) {
        std::memcpy(to, from, static_cast<std::size_t>(bytes));
        return;
    }
    for (std::int64_t i = 0; i < bytes; ++i)
        to[i] = static_cast<unsigned char>(~from[i]);
}

} // namespace zvk::Pelkraft::Client
