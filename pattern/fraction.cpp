#include "pattern/fraction.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* fractionOutOfRange = "fraction out of range in pattern";

} // namespace

std::uint32_t GreatestCommonDivisor(std::uint32_t a, std::uint32_t b)
{
    while (b != 0) {
        const std::uint32_t rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

std::uint32_t LeastCommonMultiple(std::uint32_t a, std::uint32_t b)
{
    // Never 0, however often it wraps: it holds no more factors of two than a or b does.
    return a / GreatestCommonDivisor(a, b) * b;
}

Fraction Multiply(const Fraction& a, const Fraction& b)
{
    const std::uint32_t numerator = a.numerator * b.numerator;
    const std::uint32_t denominator = a.denominator * b.denominator;
    if (denominator == 0)
        throw fractionOutOfRange;
    const std::uint32_t divisor = GreatestCommonDivisor(numerator, denominator);
    return {numerator / divisor, denominator / divisor};
}

} // namespace zvk::Pelkraft
