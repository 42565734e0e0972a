#pragma once

#include "common/inlining.h"
#include "common/units.h"

#include <utility>

// Only for files built with vector flags: all of it has internal linkage on purpose, so that
// the linker never takes code of these files for the rest of the program.
namespace zvk::Pelkraft {
namespace {

template <int value>
struct Constant
{
    constexpr operator int() const { return value; }
};

template <typename Body, int... index>
PELKRAFT_ALWAYS_INLINE inline void UnrollOver([[maybe_unused]] Body body,
                                              std::integer_sequence<int, index...>)
{
    (body(Constant<index>{}), ...);
}

// Calls body(0) to body(count - 1), each index a constant of the build.
template <int count, typename Body>
PELKRAFT_ALWAYS_INLINE inline void Unroll(Body body)
{
    UnrollOver(body, std::make_integer_sequence<int, count>{});
}

} // namespace
} // namespace zvk::Pelkraft
