#pragma once

#include "common/inlining.h"
#include "common/unroll_vector.h"

// Included after one of the vocabularies common/lanes_*.h.
// Only for files built with vector flags: all of it has internal linkage on purpose.
namespace zvk::Pelkraft {
namespace {

// One stage: the units of rows `step` apart are joined, so that a unit doubles.
template <int order, int step, int unitBytes, int rows, int columns>
PELKRAFT_ALWAYS_INLINE inline void JoinRows(Lanes* v)
{
    if constexpr (step < order) {
        Lanes joined[order];
        Unroll<order / 2>([&](auto pair) PELKRAFT_ALWAYS_INLINE {
            constexpr int group = pair / step;
            constexpr int place = pair % step;
            constexpr int upper = 2 * group * step + place;
            // A dead row may hold anything; it is never stored.
            constexpr int lower = (2 * group + 1) * step < rows ? upper + step : upper;
            constexpr int column = place * (order / step);
            constexpr int to = 2 * (group * step + place);
            if constexpr (2 * group * step < rows && column < columns)
                joined[to] = UnpackLow<unitBytes>(v[upper], v[lower]);
            if constexpr (2 * group * step < rows && column + order / (2 * step) < columns)
                joined[to + 1] = UnpackHigh<unitBytes>(v[upper], v[lower]);
        });
        JoinRows<order, 2 * step, 2 * unitBytes, rows, columns>(joined);
        Unroll<order>([&](auto i) PELKRAFT_ALWAYS_INLINE {
            if constexpr (i < columns)
                v[i] = joined[i];
        });
    }
}

// In every lane: row number r of v, cut into `order` units of 16 / order bytes, becomes column r.
// Only the first `rows` rows are read and only the first `columns` results are made.
template <int order, int rows, int columns>
PELKRAFT_ALWAYS_INLINE inline void Transpose(Lanes* v)
{
    JoinRows<order, 1, 16 / order, rows, columns>(v);
}

// In every lane: the units of `order` planes in turn, the first 16 bytes in v[0]. Only the first
// `rows` planes are read.
template <int order, int unitBytes, int rows>
PELKRAFT_ALWAYS_INLINE inline void Interleave(Lanes* v)
{
    JoinRows<order, 1, unitBytes, rows, order>(v);
}

} // namespace
} // namespace zvk::Pelkraft
