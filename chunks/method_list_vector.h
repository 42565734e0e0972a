#pragma once

#include "chunks/chunk_methods.h"
#include "common/size_policies.h"
#include "common/units.h"

#include <utility>

// Only for files built with vector flags; like all of theirs it has internal linkage.
namespace zvk::Pelkraft {
namespace {

template <std::size_t count>
struct MethodList
{
    ChunkMethod at[count];
};

template <typename Move, typename Policy, int... index>
constexpr MethodList<sizeof...(index)> ListMethods(std::integer_sequence<int, index...>)
{
    return {{Move::template MoveChunk<Policy, index + 1>...}};
}

// The methods of a class, entry k for a trail of k + 1.
template <typename Move, typename Policy, int count = unitBytes>
constexpr auto methods = ListMethods<Move, Policy>(std::make_integer_sequence<int, count>{});

template <typename Move>
constexpr const ChunkMethod* byLeadingUnits[] = {
    methods<Move, LeadingUnits<0>>.at, methods<Move, LeadingUnits<1>>.at,
    methods<Move, LeadingUnits<2>>.at, methods<Move, LeadingUnits<3>>.at,
    methods<Move, LeadingUnits<4>>.at, methods<Move, VariableSize>.at};

} // namespace
} // namespace zvk::Pelkraft
