#pragma once

#include "pattern/jump_table.h"
#include "pattern/pattern_combinations.h"
#include "pattern/pattern_model.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

// First generation, portable form: 65536 independent draws, made at construction and walked
// afterwards.
class RandomField final
{
public:
    static constexpr std::uint32_t fieldSize = 65536;

    // Draws combinations in their proportions.
    RandomField(std::int32_t seed, const CombinationDistribution& distribution,
                const PatternCombinations& combinations, std::uint32_t count);
    // Draws numbers below total, which is at least 1, and drops as many draws between them as
    // the format asks.
    RandomField(std::int32_t seed, std::uint32_t total);
    // Draws one digit, below total, of a number whose lower digits make up divisor.
    RandomField(std::int32_t seed, std::uint32_t total, std::uint32_t divisor);

    // Leaves the field as it is, and draws once: the next row begins one place behind where the
    // very first one did.
    virtual void Reset();
    virtual std::uint32_t Next() { return mField[mPosition++]; }
    virtual std::uint32_t Current() { return mField[mPosition]; }
    virtual std::uint32_t GetCount() { return mCount; }
    virtual const std::uint32_t* GetData() { return mField.data(); }
    virtual std::uint32_t GetSize() { return fieldSize; }

    void StartNextRow();

private:
    std::uint32_t mCount;
    // Both wrap by their width.
    std::uint16_t mPosition = GetJumpTable()[0];
    std::int32_t mSeed;
    std::array<std::uint32_t, fieldSize> mField;
    std::uint16_t mRow = 0;
};

} // namespace zvk::Pelkraft
