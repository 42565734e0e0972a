#include "c_interface/row_overlap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace zvk::Pelkraft {
namespace {

std::vector<std::uint64_t> StartsOf(const Pieces& pieces)
{
    std::vector<std::uint64_t> starts;
    for (std::uint64_t row = 0; row != pieces.rows; ++row)
        for (std::uint64_t plane = 0; plane != pieces.planes; ++plane)
            starts.push_back(pieces.start + row * static_cast<std::uint64_t>(pieces.rowStep) +
                             plane * static_cast<std::uint64_t>(pieces.planeStep));
    return starts;
}

// Neighbours in the order of addresses are the closest ones.
bool NaivelyShare(const Pieces& pieces)
{
    std::vector<std::uint64_t> starts = StartsOf(pieces);
    std::sort(starts.begin(), starts.end());
    for (std::size_t i = 1; i != starts.size(); ++i)
        if (starts[i] - starts[i - 1] < pieces.bytes)
            return true;
    return false;
}

bool NaivelyShare(const Pieces& one, const Pieces& other)
{
    for (const std::uint64_t first : StartsOf(one))
        for (const std::uint64_t second : StartsOf(other))
            if (first < second + other.bytes && second < first + one.bytes)
                return true;
    return false;
}

std::string Text(const Pieces& pieces)
{
    return std::to_string(pieces.start) + " + " + std::to_string(pieces.rows) + " * " +
           std::to_string(pieces.rowStep) + " + " + std::to_string(pieces.planes) + " * " +
           std::to_string(pieces.planeStep) + ", " + std::to_string(pieces.bytes) + " bytes";
}

// The same numbers everywhere.
class Numbers
{
public:
    std::int64_t Between(std::int64_t low, std::int64_t high)
    {
        return low +
               static_cast<std::int64_t>(engine() % static_cast<std::uint64_t>(high - low + 1));
    }
    std::uint64_t UpTo(std::uint64_t high) { return 1 + engine() % high; }

private:
    std::mt19937_64 engine{20};
};

TEST(PiecesOfOneSide, ShareBytesWhereTwoOfThemDo)
{
    Numbers numbers;
    int shared = 0;
    constexpr int trials = 300000;
    for (int i = 0; i != trials; ++i) {
        const Pieces pieces = {10000,           numbers.Between(-40, 40), numbers.Between(-40, 40),
                               numbers.UpTo(9), numbers.UpTo(9),          numbers.UpTo(6)};
        ASSERT_EQ(ShareBytes(pieces), NaivelyShare(pieces)) << Text(pieces);
        shared += NaivelyShare(pieces) ? 1 : 0;
    }
    EXPECT_GT(shared, trials / 10);
    EXPECT_LT(shared, trials * 9 / 10);
}

// Steps that are nearly a multiple of one number meet after some rows and planes, or just don't.
TEST(PiecesOfOneSide, ShareBytesAtAnySizeOfSteps)
{
    Numbers numbers;
    int shared = 0;
    constexpr int trials = 100000;
    for (int i = 0; i != trials; ++i) {
        const auto common = std::int64_t{1} << numbers.Between(3, sizeof(void*) == 8 ? 45 : 15);
        const auto bytes = static_cast<std::uint64_t>(numbers.Between(1, common / 2 + 3));
        const auto stepOf = [&] {
            return numbers.Between(1, 30) * common + numbers.Between(-common / 5, common / 5);
        };
        const Pieces pieces = {std::uintptr_t{1} << (sizeof(void*) == 8 ? 60 : 28),
                               stepOf(),
                               stepOf(),
                               numbers.UpTo(25),
                               numbers.UpTo(25),
                               bytes};
        ASSERT_EQ(ShareBytes(pieces), NaivelyShare(pieces)) << Text(pieces);
        shared += NaivelyShare(pieces) ? 1 : 0;
    }
    EXPECT_GT(shared, trials / 10);
    EXPECT_LT(shared, trials * 9 / 10);
}

// The places where they would meet lie beyond 64 bits.
TEST(PiecesOfOneSide, StandApartWhereTheyMeetBeyondAllMemory)
{
    if (sizeof(void*) != 8)
        return;
    Numbers numbers;
    for (int i = 0; i != 30000; ++i) {
        const std::int64_t rowStep = (std::int64_t{1} << 58) + numbers.Between(0, 1000000000);
        const std::int64_t planeStep = numbers.Between(1 << 20, std::int64_t{1} << 56);
        const auto planes = static_cast<std::uint64_t>((std::int64_t{1} << 59) / planeStep);
        const Pieces pieces = {
            0, rowStep, planeStep, 2, std::min<std::uint64_t>(planes, 300), numbers.UpTo(9)};
        ASSERT_EQ(ShareBytes(pieces), NaivelyShare(pieces)) << Text(pieces);
    }
}

TEST(PiecesOfTwoSides, ShareBytesWhereOneOfEachDoes)
{
    Numbers numbers;
    int shared = 0;
    constexpr int trials = 200000;
    for (int i = 0; i != trials; ++i) {
        const std::uint64_t rows = numbers.UpTo(6);
        const auto sideFrom = [&](std::int64_t start) {
            return Pieces{static_cast<std::uintptr_t>(start),
                          numbers.Between(-30, 30),
                          numbers.Between(-30, 30),
                          rows,
                          numbers.UpTo(4),
                          numbers.UpTo(5)};
        };
        const Pieces one = sideFrom(10000);
        Pieces other = sideFrom(numbers.Between(9900, 10100));
        if (numbers.UpTo(2) == 1)
            other.rowStep = one.rowStep;
        ASSERT_EQ(ShareBytes(one, other), NaivelyShare(one, other))
            << Text(one) << " and " << Text(other);
        shared += NaivelyShare(one, other) ? 1 : 0;
    }
    EXPECT_GT(shared, trials / 10);
    EXPECT_LT(shared, trials * 9 / 10);
}

// The work is bounded: what it does not tell counts as shared.
TEST(PiecesOfTwoSides, CountAsSharingWhereTheyAreTooManyToCompare)
{
    const std::uint64_t many = (std::uint64_t{1} << 20) + 1;
    const Pieces even = {1000, 4, 0, many, 1, 1};
    const Pieces odd = {1001, 2, 0, many, 1, 1};
    EXPECT_TRUE(ShareBytes(even, odd));
    const Pieces fewEven = {1000, 4, 0, many - 1, 1, 1};
    const Pieces fewOdd = {1001, 2, 0, many - 1, 1, 1};
    EXPECT_FALSE(ShareBytes(fewEven, fewOdd));
    // Rows at the same steps are compared all at once.
    EXPECT_FALSE(ShareBytes({1000, 4, 0, many, 1, 1}, {1001, 4, 0, many, 1, 1}));
    EXPECT_TRUE(ShareBytes({1000, 0, 4, 1, many, 1}, {1001, 0, 4, 1, 1, 1}));
    EXPECT_TRUE(ShareBytes({1000, 0, 4, 1, 1, 1}, {1001, 0, 4, 1, many, 1}));
    EXPECT_TRUE(ShareBytes({1000, 0, 4, 1, 1100, 1}, {1001, 0, 4, 1, 1100, 1}));
    EXPECT_FALSE(ShareBytes({1000, 0, 4, 1, 1000, 1}, {1001, 0, 4, 1, 1000, 1}));
    if (sizeof(void*) == 8) {
        EXPECT_TRUE(
            ShareBytes({0, 0, 0, 1, 1, 1},
                       {static_cast<std::uintptr_t>(std::uint64_t{1} << 61), 0, 0, 1, 1, 1}));
    }
}

} // namespace
} // namespace zvk::Pelkraft
