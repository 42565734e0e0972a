#include "pattern/random_pointer.h"

#include "pattern/combination_draw.h"
#include "pattern/sse_transformation.h"

#include <algorithm>

namespace zvk::Pelkraft {

template <typename Transformation>
void RandomPointer<Transformation>::Build(std::int32_t seed,
                                          const CombinationDistribution& distribution,
                                          const Transformation* transformations)
{
    mSeed = seed;
    mCount = distribution.count;
    Reset();
    CombinationDraw draw(mSeed, distribution);
    std::generate(mField.begin(), mField.end(),
                  [&draw, transformations] { return transformations + draw.Next(); });
}

template <typename Transformation>
void RandomPointer<Transformation>::Reset()
{
    mRow = 0;
    mPosition = GetJumpTable()[0];
}

template <typename Transformation>
void RandomPointer<Transformation>::StartNextRow()
{
    ++mRow;
    mPosition = GetJumpTable()[mRow];
}

template class RandomPointer<SseTransformation>;

} // namespace zvk::Pelkraft
