#pragma once

#include "pattern/jump_table.h"
#include "pattern/pattern_model.h"

#include <array>
#include <cstdint>

namespace zvk::Pelkraft {

// First generation, vector form: the field of RandomField, with the address of a combination's
// tables in place of its number.
template <typename Transformation>
class RandomPointer
{
public:
    static constexpr std::uint32_t fieldSize = 65536;

    // The tables must outlive the walk.
    void Build(std::int32_t seed, const CombinationDistribution& distribution,
               const Transformation* transformations);

    void Reset();
    void StartNextRow();

    const Transformation* const* GetField() const { return mField.data(); }
    std::uint32_t GetPosition() const { return mPosition; }
    // Where the walk wraps.
    std::uint32_t GetWalkSize() const { return fieldSize; }

private:
    std::uint32_t mCount = 0;
    std::int32_t mSeed = 0;
    std::array<const Transformation*, fieldSize> mField{};
    // Both wrap by their width.
    std::uint16_t mPosition = GetJumpTable()[0];
    std::uint16_t mRow = 0;
};

} // namespace zvk::Pelkraft
