#pragma once

#include "tests/bounds/covered_bytes.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// Runs an operation on two destinations that differ in every bit, with bytes around them, and
// shows what depends on them that may not, or does not although it must.
class TwoFills
{
public:
    using Operation = std::function<void(unsigned char* destination)>;

    // For destinations of this size at most.
    explicit TwoFills(std::size_t newCapacity);

    // Empty if each covered byte is the same on both, and each other byte is as it was: all those
    // around the destination too. The address is shifted by some bytes.
    std::string Run(std::size_t bytes, std::size_t shift, const CoveredBytes& covered,
                    const Operation& operation);

private:
    static constexpr std::size_t margin = 64;

    Bytes before;
    Bytes first;
    Bytes second;
};

} // namespace zvk::Pelkraft::TestSupport
