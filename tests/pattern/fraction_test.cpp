#include "pattern/pattern_combinations.h"

#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace zvk::Pelkraft {
namespace {

using TestSupport::WhatIsThrown;

TEST(Fraction, IsReducedAfterEachMultiplication)
{
    EXPECT_EQ(Multiply({1, 1}, {2, 4}), (Fraction{1, 2}));
    EXPECT_EQ(Multiply({2, 3}, {3, 4}), (Fraction{1, 2}));
    EXPECT_EQ(Multiply({5, 7}, {7, 5}), (Fraction{1, 1}));
}

TEST(Fraction, WithANumeratorOfZeroKeepsADenominatorOfOne)
{
    EXPECT_EQ(Multiply({0, 5}, {3, 4}), (Fraction{0, 1}));
}

TEST(Fraction, WrapsBothProductsIn32Bits)
{
    // 65537 * 65537 is 2^32 + 131073.
    EXPECT_EQ(Multiply({1, 65537}, {1, 65537}), (Fraction{1, 131073}));
    // 2^16 * 2^16 wraps to 0, which leaves the denominator as the divisor.
    EXPECT_EQ(Multiply({65536, 3}, {65536, 5}), (Fraction{0, 1}));
    // -1 * 2 as 32 bits, over 3 * 2: both halve.
    EXPECT_EQ(Multiply({0xFFFFFFFF, 3}, {2, 2}), (Fraction{0x7FFFFFFF, 3}));
}

TEST(Fraction, RefusesADenominatorThatWrapsToZero)
{
    const auto refusal = "narrow: fraction out of range in pattern";
    EXPECT_EQ(WhatIsThrown([] { Multiply({1, 65536}, {1, 65536}); }), refusal);
    EXPECT_EQ(WhatIsThrown([] { Multiply({65536, 65536}, {65536, 65536}); }), refusal);
}

TEST(GreatestCommonDivisor, IsTheOtherNumberBesideZero)
{
    EXPECT_EQ(GreatestCommonDivisor(0, 12), 12U);
    EXPECT_EQ(GreatestCommonDivisor(12, 0), 12U);
    EXPECT_EQ(GreatestCommonDivisor(12, 18), 6U);
    EXPECT_EQ(GreatestCommonDivisor(0xFFFFFFFF, 0xFFFF), 0xFFFFU);
}

TEST(LeastCommonMultiple, WrapsIn32BitsAfterTheDivision)
{
    EXPECT_EQ(LeastCommonMultiple(4, 6), 12U);
    EXPECT_EQ(LeastCommonMultiple(1, 7), 7U);
    EXPECT_EQ(LeastCommonMultiple(0x80000000, 0x40000000), 0x80000000U);
    // 65537 * 65539 is 2^32 + 262147.
    EXPECT_EQ(LeastCommonMultiple(65537, 65539), 262147U);
}

} // namespace
} // namespace zvk::Pelkraft
