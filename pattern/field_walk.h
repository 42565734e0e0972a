#pragma once

#include "pattern/random_fields.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace zvk::Pelkraft {

// All random numbers of a pattern are drawn as it is loaded, into a field that its pixels walk
// round. Each row starts at the place that the jump table has for it. An entry is the number of a
// combination for the portable engine and the address of its tables for the vector engine.
template <typename Entry>
class FieldWalk
{
public:
    const Entry* GetData() const { return mField.data(); }
    std::uint32_t GetSize() const { return mSize; }
    std::uint32_t GetPosition() const { return mPosition; }

    // Rows count from the first one after construction.
    std::uint32_t GetStartOfRow(std::uint16_t row) const
    {
        const std::uint32_t start = GetJumpTable()[row];
        return start < mSize ? start : 0;
    }

    Entry Current() const { return mField[mPosition]; }

    Entry Next()
    {
        const Entry entry = mField[mPosition++];
        if (mPosition == mSize)
            mPosition = 0;
        return entry;
    }

    void StartNextRow() { StartRow(static_cast<std::uint16_t>(mRow + 1)); }

    // The field stays as it is. A walk over numbers draws once as well: its next row begins one
    // place after the start of its very first one.
    void Reset()
    {
        StartRow(0);
        if constexpr (std::is_integral_v<Entry>)
            Next();
    }

protected:
    explicit FieldWalk(std::vector<Entry> field = {}) { Begin(std::move(field)); }
    ~FieldWalk() = default;

    void Begin(std::vector<Entry> field)
    {
        mField = std::move(field);
        mSize = static_cast<std::uint32_t>(mField.size());
        StartRow(0);
    }

private:
    void StartRow(std::uint16_t row)
    {
        mRow = row;
        mPosition = GetStartOfRow(row);
    }

    std::vector<Entry> mField;
    std::uint32_t mSize;
    std::uint32_t mPosition;
    // It wraps by its width.
    std::uint16_t mRow;
};

// This is the first generation for the portable engine.
class RandomField final : public FieldWalk<std::uint32_t>
{
public:
    // The last two arguments serve the second generation.
    RandomField(std::int32_t seed, const CombinationDistribution& distribution,
                const PatternCombinations&, std::uint32_t)
        : FieldWalk(DrawField(seed, distribution)), mCount(distribution.count)
    {}
    RandomField(std::int32_t seed, std::uint32_t total)
        : FieldWalk(DrawField(seed, total)), mCount(total)
    {}
    RandomField(std::int32_t seed, std::uint32_t total, std::uint32_t divisor)
        : FieldWalk(DrawField(seed, total, divisor)), mCount(total)
    {}

    std::uint32_t GetCount() const { return mCount; }

private:
    const std::uint32_t mCount;
};

// This is the second generation for the portable engine. Fewer than 2 combinations throw "pattern
// without random combinations".
class RandomFieldNG final : public FieldWalk<std::uint32_t>
{
public:
    RandomFieldNG(std::int32_t seed, const CombinationDistribution&,
                  const PatternCombinations& combinations, std::uint32_t count)
        : FieldWalk(
              ShuffleField(seed, FindFieldDenominator(combinations, count, 0), combinations, count))
    {}
};

// The vector engine walks the same combinations as the portable one, by the addresses of their
// tables, which must outlive the walk.
template <typename Transformation>
class PointerWalk : public FieldWalk<const Transformation*>
{
protected:
    ~PointerWalk() = default;

    void BeginAt(const Transformation* tables, const RandomNumbers& combinations)
    {
        std::vector<const Transformation*> field(combinations.size());
        std::transform(combinations.begin(), combinations.end(), field.begin(),
                       [tables](std::uint32_t combination) { return tables + combination; });
        this->Begin(std::move(field));
    }
};

// This is the first generation for the vector engine.
template <typename Transformation>
class RandomPointer final : public PointerWalk<Transformation>
{
public:
    void Build(std::int32_t seed, const CombinationDistribution& distribution,
               const Transformation* tables)
    {
        this->BeginAt(tables, DrawField(seed, distribution));
    }

    std::uint32_t GetWalkSize() const { return this->GetSize(); }
};

// This is the second generation for the vector engine, where no walk knows of another.
template <typename Transformation>
class ShuffledPointers : public PointerWalk<Transformation>
{
public:
    void Build(std::int32_t seed, const PatternCombinations& combinations, std::uint32_t count,
               const Transformation* tables)
    {
        // The lowest is 1, so that a pattern of one combination has a field too.
        const std::uint32_t denominator = FindFieldDenominator(combinations, count, 1);
        this->BeginAt(tables, ShuffleField(seed, denominator, combinations, count));
    }

    std::uint32_t GetWalkSize() const { return this->GetSize(); }
};

// This is the second generation for the vector engine of a DotWeavePattern.
template <typename Transformation>
class RandomPointerNG final : public ShuffledPointers<Transformation>
{
public:
    void Build(std::int32_t seed, const PatternCombinations& combinations, std::uint32_t count,
               const Transformation* tables)
    {
        ShuffledPointers<Transformation>::Build(seed, combinations, count, tables);
        // This comes last: a field for which there is no memory must change no other walk.
        sFieldSize = this->GetSize();
    }

    // The walk wraps at the size of the field that was built last in the process, but not beyond
    // this one's own end.
    std::uint32_t GetWalkSize() const { return std::min(sFieldSize.load(), this->GetSize()); }

private:
    // It belongs to the process: the walk of every object wraps at it, which is part of the
    // results.
    static inline std::atomic<std::uint32_t> sFieldSize{0};
};

} // namespace zvk::Pelkraft
