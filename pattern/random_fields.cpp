#include "pattern/random_fields.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <random>
#include <utility>

namespace zvk::Pelkraft {
namespace {

constexpr const char* noCombinations = "pattern without random combinations";

constexpr std::uint32_t jumpSeed = 4711;
constexpr std::size_t drawnFieldSize = 65536;
constexpr std::uint32_t leastShuffledSize = 100000;
// These numbers take 1 GB. A machine that promises more memory than it has would not refuse more.
constexpr std::uint32_t highestShuffledSize = 0x10000000;

JumpTable BuildJumpTable()
{
    LinearRandom random(jumpSeed);
    JumpTable table;
    std::generate(table.begin(), table.end(),
                  [&random] { return static_cast<std::uint16_t>(random.Next() * 2); });
    return table;
}

template <typename DrawEntry>
RandomNumbers DrawEntries(std::int32_t seed, DrawEntry drawEntry)
{
    LinearRandom random(static_cast<std::uint32_t>(seed));
    RandomNumbers field(drawnFieldSize);
    std::generate(field.begin(), field.end(), [&] { return drawEntry(random); });
    return field;
}

// Finds the combination of each remainder that the generator reaches.
RandomNumbers SortRemainders(const CombinationDistribution& distribution)
{
    RandomNumbers combinationOf(std::min(distribution.total, linearRandomValues));
    // The first sum above a remainder never stands further front than that of a smaller one,
    // even where the sums have wrapped: one pass serves all remainders.
    std::uint32_t next = 0;
    for (std::uint32_t rest = 0; rest < combinationOf.size(); ++rest) {
        while (next < distribution.count && rest >= distribution.cumulative[next])
            ++next;
        combinationOf[rest] = next - 1;
    }
    return combinationOf;
}

// Draws without a bias towards small indices: an output beyond the last whole multiple of n is
// rejected. The standard's own shuffle may draw in any way it likes, and does not serve.
std::uint32_t DrawIndex(std::mt19937& random, std::uint32_t last)
{
    constexpr std::uint32_t mask = 0xFFFFFFFF;
    const std::uint32_t n = last + 1;
    auto draw = static_cast<std::uint32_t>(random());
    while (draw / n >= mask / n && mask % n != last)
        draw = static_cast<std::uint32_t>(random());
    return draw % n;
}

void Shuffle(RandomNumbers& field, std::uint32_t seed)
{
    std::mt19937 random(seed);
    for (std::uint32_t last = 1; last < field.size(); ++last) {
        const std::uint32_t index = DrawIndex(random, last);
        if (index != last)
            std::swap(field[last], field[index]);
    }
}

} // namespace

const JumpTable& GetJumpTable()
{
    static const JumpTable table = BuildJumpTable();
    return table;
}

RandomNumbers DrawField(std::int32_t seed, const CombinationDistribution& distribution)
{
    const RandomNumbers combinationOf = SortRemainders(distribution);
    return DrawEntries(seed, [&, total = distribution.total](LinearRandom& random) {
        return combinationOf[random.Next() % total];
    });
}

RandomNumbers DrawField(std::int32_t seed, std::uint32_t total)
{
    return DrawEntries(seed, [total](LinearRandom& random) {
        const auto drop = [&random](int draws) {
            for (; draws > 0; --draws)
                random.Next();
        };
        drop(total == 3 ? 1 : 0);
        const std::uint32_t entry = random.Next() % total;
        drop(total == 2 ? 3 : 2);
        return entry;
    });
}

RandomNumbers DrawField(std::int32_t seed, std::uint32_t total, std::uint32_t divisor)
{
    return DrawEntries(seed, [=](LinearRandom& random) { return random.Next() / divisor % total; });
}

std::uint32_t FindFieldDenominator(const PatternCombinations& combinations, std::uint32_t count,
                                   std::uint32_t lowestDenominator)
{
    // The first combination is left out: that decides size and content of the field.
    std::uint32_t highest = lowestDenominator;
    for (std::uint32_t i = 1; i < count; ++i)
        highest = std::max(highest, combinations[i].fraction.denominator);
    return highest;
}

std::uint32_t CountShuffledEntries(std::uint32_t denominator)
{
    return denominator * (leastShuffledSize / denominator + 1);
}

RandomNumbers ShuffleField(std::int32_t seed, std::uint32_t denominator,
                           const PatternCombinations& combinations, std::uint32_t count)
{
    if (denominator == 0)
        throw noCombinations;
    const std::uint32_t size = CountShuffledEntries(denominator);
    const std::uint32_t multiplier = size / denominator;
    if (size > highestShuffledSize)
        throw std::bad_alloc();

    RandomNumbers field(size, 0);
    auto next = field.begin();
    for (std::uint32_t i = 0; i < count; ++i) {
        const Fraction& fraction = combinations[i].fraction;
        // The product wraps in 32 bits before it is divided. Where fractions have wrapped, the
        // entries may be more than there are places.
        const std::uint32_t entries =
            fraction.numerator * denominator / fraction.denominator * multiplier;
        const auto room = static_cast<std::size_t>(field.end() - next);
        next = std::fill_n(next, std::min<std::size_t>(entries, room), i);
    }
    Shuffle(field, static_cast<std::uint32_t>(seed));
    return field;
}

} // namespace zvk::Pelkraft
