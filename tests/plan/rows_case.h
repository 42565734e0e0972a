#pragma once

#include "plan/rows_plan.h"
#include "tests/support/guarded_buffer.h"
#include "tests/support/naive_rows.h"

#include <random>

// Many rows in memory of exactly their size, converted by a plan and by the naive reference.
namespace zvk::Pelkraft::TestSupport {

// The request refers to the map of the join.
RowsRequest RequestOf(const NaiveJoin& join, int level);

// Rows of a form in memory that holds them, the gaps between them and no byte more.
struct PlacedRows
{
    NaivePlacement at;
    std::size_t bytes;
};

// In any order, with gaps at random: row by row or plane by plane, forwards or backwards.
PlacedRows PlaceRows(const NaiveGeometry& form, int rows, std::mt19937& engine);
// Each row after the one before it, without gaps.
PlacedRows PlaceTightly(const NaiveGeometry& form, int rows);

template <typename Byte>
StridedRows<Byte> RowsAt(Byte* memory, const NaivePlacement& at)
{
    return {memory + at.offset, at.rowStep, at.planeStep};
}

// The target's memory after the conversion of so many rows, given that before it.
Bytes ExpectedRows(const NaiveJoin& join, const NaivePlacement& source, const Bytes& sourceMemory,
                   const NaivePlacement& target, const Bytes& before, int rows);

// Runs the plan on random rows at random places between forbidden pages, and expects what the
// reference says, and the source untouched.
void CheckRows(const NaiveJoin& join, const RowsPlan& plan, int rows, std::uint32_t seed);

// The same where source and target are one.
void CheckInPlace(const NaiveJoin& join, const RowsPlan& plan, int rows, std::uint32_t seed);

// Any conversion that a plan has to serve.
NaiveJoin PickJoin(std::mt19937& engine);
// One that may be done in place.
NaiveJoin PickJoinInPlace(std::mt19937& engine);

} // namespace zvk::Pelkraft::TestSupport
