#pragma once

#include "common/inlining.h"
#include "common/intrinsics_vector.h"
#include "common/lanes_vector.h"
#include "common/size_policies.h"
#include "common/slot_units_vector.h"
#include "common/unroll_vector.h"

#include <cstdint>

// Only for files built with vector flags; like all of theirs it has internal linkage.
namespace zvk::Pelkraft {
namespace {

// A row may begin at any address.
PELKRAFT_ALWAYS_INLINE inline __m128i LoadRowUnit(const unsigned char* row)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(row));
}

PELKRAFT_ALWAYS_INLINE inline void StoreRowUnit(unsigned char* row, __m128i unit)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(row), unit);
}

// The 16 bytes from byte shift on of two units side by side.
template <int shift>
PELKRAFT_ALWAYS_INLINE inline __m128i AlignUnits(__m128i low, __m128i high)
{
    if constexpr (shift == 0)
        return low;
    else if constexpr (shift == unitBytes)
        return high;
    else
        return _mm_alignr_epi8(high, low, shift);
}

// The bytes from byte shift on, then zeros.
template <int shift>
PELKRAFT_ALWAYS_INLINE inline __m128i ShiftUnit(__m128i unit)
{
    if constexpr (shift == 0)
        return unit;
    else
        return _mm_srli_si128(unit, shift);
}

// The units of a pixel before its last one are as many as the build says, or the chunk. The count
// comes by reference, so that nothing reads it in the first case.
template <typename Policy>
class LeadingLoop;

template <int count>
class LeadingLoop<LeadingUnits<count>>
{
public:
    explicit LeadingLoop(const std::uint64_t&) {}

    template <typename Body>
    PELKRAFT_ALWAYS_INLINE void ForEach(Body body) const
    {
        Unroll<count>([&](auto) PELKRAFT_ALWAYS_INLINE { body(); });
    }
};

template <>
class LeadingLoop<VariableSize>
{
public:
    explicit LeadingLoop(const std::uint64_t& unitCount) : count(unitCount - 1) {}

    template <typename Body>
    PELKRAFT_ALWAYS_INLINE void ForEach(Body body) const
    {
        for (std::uint64_t unit = 0; unit < count; ++unit)
            body();
    }

private:
    std::uint64_t count;
};

} // namespace
} // namespace zvk::Pelkraft
