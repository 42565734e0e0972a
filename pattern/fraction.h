#pragma once

#include <cstdint>

namespace zvk::Pelkraft {

// The parser stores it as read; what comes from a multiplication is reduced.
struct Fraction
{
    std::uint32_t numerator = 1;
    std::uint32_t denominator = 1;

    bool operator==(const Fraction&) const = default;
};

// The other number where one is 0.
std::uint32_t GreatestCommonDivisor(std::uint32_t a, std::uint32_t b);

// Wraps in 32 bits; both arguments at least 1.
std::uint32_t LeastCommonMultiple(std::uint32_t a, std::uint32_t b);

// Products wrap in 32 bits before they are reduced. A product of denominators that wraps to 0
// throws "fraction out of range in pattern".
Fraction Multiply(const Fraction& a, const Fraction& b);

} // namespace zvk::Pelkraft
