#include "pattern/random_pointer_ng.h"

#include "pattern/shuffled_field.h"
#include "pattern/sse_transformation.h"

#include <algorithm>

namespace zvk::Pelkraft {

template <typename Transformation>
std::atomic<std::uint32_t> RandomPointerNG<Transformation>::sFieldSize{0};

template <typename Transformation>
void RandomPointerNG<Transformation>::Build(std::int32_t seed,
                                            const PatternCombinations& combinations,
                                            std::uint32_t count,
                                            const Transformation* transformations)
{
    mSeed = static_cast<std::uint32_t>(seed);
    Reset();
    // From 1, so that a pattern of one combination has a field too.
    const FieldMeasure measure = MeasureField(FindFieldDenominator(combinations, count, 1));
    const auto numbers = BuildShuffledField(mSeed, measure, combinations, count);
    mField.resize(numbers.size());
    std::transform(numbers.begin(), numbers.end(), mField.begin(),
                   [=](std::uint32_t number) { return transformations + number; });
    // Last, so that a field for which there is no memory changes no other object's walk.
    sFieldSize = measure.Size();
}

template <typename Transformation>
void RandomPointerNG<Transformation>::Reset()
{
    mRow = 0;
    mPosition = GetJumpTable()[0];
}

template <typename Transformation>
void RandomPointerNG<Transformation>::StartNextRow()
{
    ++mRow;
    const std::uint32_t start = GetJumpTable()[mRow];
    mPosition = start < GetWalkSize() ? start : 0;
}

template <typename Transformation>
std::uint32_t RandomPointerNG<Transformation>::GetWalkSize() const
{
    return std::min(sFieldSize.load(), static_cast<std::uint32_t>(mField.size()));
}

template class RandomPointerNG<SseTransformation>;

} // namespace zvk::Pelkraft
