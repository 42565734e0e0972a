#pragma once

namespace zvk::Pelkraft {

// Loops are written out where their length is known.
template <int N>
struct FixedSize
{};

// The length of other loops stands in the chunk or in the parameter block.
struct VariableSize
{};

// Interleaved rows go by the units of a pixel before its last one, all other families by the units
// of a slot: these names say which count is meant.
template <int count>
using LeadingUnits = FixedSize<count>;
template <int count>
using SlotUnits = FixedSize<count>;
using OneUnit = SlotUnits<1>;

} // namespace zvk::Pelkraft
