#pragma once

namespace zvk::Pelkraft {

// For loops written out because their length is known. Each template says what N stands for.
template <int N>
struct FixedSize
{};

// For loops whose length the chunk or the parameter block tells.
struct VariableSize
{};

} // namespace zvk::Pelkraft
