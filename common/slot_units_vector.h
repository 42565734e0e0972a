#pragma once

#include "common/inlining.h"
#include "common/intrinsics_vector.h"

// Only for files built with vector flags: all of it has internal linkage on purpose. Chunks,
// slots and parameter blocks are 16-byte aligned.
namespace zvk::Pelkraft {
namespace {

PELKRAFT_ALWAYS_INLINE inline __m128i LoadSlotUnit(const unsigned char* slot)
{
    return _mm_load_si128(reinterpret_cast<const __m128i*>(slot));
}

PELKRAFT_ALWAYS_INLINE inline void StoreSlotUnit(unsigned char* slot, __m128i unit)
{
    _mm_store_si128(reinterpret_cast<__m128i*>(slot), unit);
}

} // namespace
} // namespace zvk::Pelkraft
