#pragma once

#include "pelkraft/plan.h"
#include "plan/rows_plan.h"

#include <cstdint>
#include <vector>

namespace zvk::Pelkraft {

// A spec of which all has been checked, in its canonical form: specs that mean the same have the
// same one.
struct PlanSpec
{
    plk_format source;
    plk_format target;
    // A map that takes the channels as they are is none.
    bool maps;
    std::vector<std::int32_t> map;
    // 1, 2 or 4.
    std::int32_t repeat;
    std::int32_t mirror;
    // PLK_SAMPLES_AS_FILL where the others do the same.
    std::int32_t samples;
    std::int32_t invert;
    // 0 where the widths meet.
    std::int32_t clip;
    std::int32_t stream;
    std::int32_t road;
};

// Refuses, in this order: the record's size and what this library does not know; for each field, as
// they stand in the record, a value that none may have; planes of 10 bits; rows of more bytes than
// there are addresses; a map that does not fit; channels, widths and kinds of samples that do not
// go together. Of each of these the source's comes first.
PlanSpec CheckSpec(const plk_spec* given);

// Fills the caller's record, whose map is then this one's.
void GiveSpec(const PlanSpec& spec, plk_spec* record);

// Bytes of a plane, or of the row where it is interleaved, up to pixel number `pixels`.
std::uint64_t BytesUpTo(const plk_format& format, std::uint64_t pixels);

// The same for the plan of many rows, at this level. Its map is that of the argument.
RowsRequest RequestOf(const PlanSpec& spec, std::int32_t level);

} // namespace zvk::Pelkraft
