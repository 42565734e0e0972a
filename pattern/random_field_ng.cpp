#include "pattern/random_field_ng.h"

#include "pattern/shuffled_field.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* noCombinations = "pattern without random combinations";

} // namespace

RandomFieldNG::RandomFieldNG(std::int32_t seed, const CombinationDistribution&,
                             const PatternCombinations& combinations, std::uint32_t count)
    : mSeed(static_cast<std::uint32_t>(seed))
{
    const std::uint32_t denominator = FindFieldDenominator(combinations, count, 0);
    if (denominator == 0)
        throw noCombinations;
    const FieldMeasure measure = MeasureField(denominator);
    mSize = measure.Size();
    mField = BuildShuffledField(mSeed, measure, combinations, count);
}

void RandomFieldNG::Reset()
{
    mRow = 0;
    mPosition = GetJumpTable()[0];
    Next();
}

std::uint32_t RandomFieldNG::Next()
{
    const std::uint32_t entry = mField[mPosition++];
    if (mPosition == mSize)
        mPosition = 0;
    return entry;
}

void RandomFieldNG::StartNextRow()
{
    ++mRow;
    // The smallest field has more entries than the jump table has starts.
    mPosition = GetJumpTable()[mRow];
}

} // namespace zvk::Pelkraft
