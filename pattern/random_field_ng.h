#pragma once

#include "pattern/jump_table.h"
#include "pattern/pattern_combinations.h"
#include "pattern/pattern_model.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// Second generation, portable form: a field in the exact proportions, shuffled at construction
// and walked afterwards.
class RandomFieldNG final
{
public:
    // Fewer than 2 combinations throw "pattern without random combinations".
    RandomFieldNG(std::int32_t seed, const CombinationDistribution& distribution,
                  const PatternCombinations& combinations, std::uint32_t count);

    // Leaves the field as it is, and draws once: the next row begins one place behind where the
    // very first one did.
    virtual void Reset();
    virtual std::uint32_t Next();
    virtual std::uint32_t Current() { return mField[mPosition]; }
    virtual const std::uint32_t* GetData() { return mField.data(); }
    virtual std::uint32_t GetSize() { return mSize; }

    void StartNextRow();

private:
    std::uint32_t mPosition = GetJumpTable()[0];
    std::uint32_t mSeed;
    std::vector<std::uint32_t> mField;
    std::uint32_t mSize;
    std::uint16_t mRow = 0;
};

} // namespace zvk::Pelkraft
