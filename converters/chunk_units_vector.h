#pragma once

#include <tmmintrin.h>

// Only for files built with vector flags: all of it has internal linkage on purpose. Chunks,
// slots and parameter blocks are 16-byte aligned.
namespace zvk::Pelkraft::VectorRoad {
namespace {

[[gnu::always_inline]] inline __m128i LoadUnit(const unsigned char* from)
{
    return _mm_load_si128(reinterpret_cast<const __m128i*>(from));
}

[[gnu::always_inline]] inline void StoreUnit(unsigned char* to, __m128i unit)
{
    _mm_store_si128(reinterpret_cast<__m128i*>(to), unit);
}

} // namespace
} // namespace zvk::Pelkraft::VectorRoad
