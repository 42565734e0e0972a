#pragma once

namespace zvk::Pelkraft {

// Marks a family member as unrolled for a known size. What N counts differs by family.
template <int N>
struct FixedSize
{};

// Marks a family member that takes its size at run time.
struct VariableSize
{};

} // namespace zvk::Pelkraft
