#pragma once

#include "pattern/jump_table.h"
#include "pattern/pattern_combinations.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// Second generation, vector form: the field of RandomFieldNG, with the address of a
// combination's tables in place of its number.
template <typename Transformation>
class RandomPointerNG
{
public:
    // The tables must outlive the walk.
    void Build(std::int32_t seed, const PatternCombinations& combinations, std::uint32_t count,
               const Transformation* transformations);

    void Reset();
    void StartNextRow();

    const Transformation* const* GetField() const { return mField.data(); }
    std::uint32_t GetPosition() const { return mPosition; }
    // Where the walk wraps: at the size of the field that was built last in the process, but not
    // beyond this one's own end.
    std::uint32_t GetWalkSize() const;

private:
    // Not in the object: the walk of every object wraps at it, which is part of the results.
    static std::atomic<std::uint32_t> sFieldSize;

    std::uint32_t mSeed = 0;
    std::vector<const Transformation*> mField;
    std::uint32_t mPosition = GetJumpTable()[0];
    std::uint16_t mRow = 0;
};

} // namespace zvk::Pelkraft
