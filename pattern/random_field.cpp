#include "pattern/random_field.h"

#include "pattern/combination_draw.h"
#include "pattern/linear_random.h"

#include <algorithm>

namespace zvk::Pelkraft {

RandomField::RandomField(std::int32_t seed, const CombinationDistribution& distribution,
                         const PatternCombinations&, std::uint32_t)
    : mCount(distribution.count), mSeed(seed)
{
    CombinationDraw draw(mSeed, distribution);
    std::generate(mField.begin(), mField.end(), [&draw] { return draw.Next(); });
}

RandomField::RandomField(std::int32_t seed, std::uint32_t total) : mCount(total), mSeed(seed)
{
    LinearRandom random(static_cast<std::uint32_t>(mSeed));
    const auto drop = [&random](int draws) {
        for (; draws > 0; --draws)
            random.Next();
    };
    for (std::uint32_t& entry : mField) {
        drop(total == 3 ? 1 : 0);
        entry = random.Next() % total;
        drop(total == 2 ? 3 : 2);
    }
}

RandomField::RandomField(std::int32_t seed, std::uint32_t total, std::uint32_t divisor)
    : mCount(total), mSeed(seed)
{
    LinearRandom random(static_cast<std::uint32_t>(mSeed));
    std::generate(mField.begin(), mField.end(),
                  [&random, divisor, total] { return random.Next() / divisor % total; });
}

void RandomField::Reset()
{
    mRow = 0;
    mPosition = GetJumpTable()[0];
    Next();
}

void RandomField::StartNextRow()
{
    ++mRow;
    mPosition = GetJumpTable()[mRow];
}

} // namespace zvk::Pelkraft
