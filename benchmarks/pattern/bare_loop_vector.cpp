#include "benchmarks/pattern/bare_loops.h"
#include "common/intrinsics_vector.h"

namespace zvk::Pelkraft::Benchmarks {

void ApplyBare(const Row& row, const BareTable* const* field, const unsigned char* lanes)
{
    const __m128i inColorLanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(lanes));
    const unsigned char* source = row.source;
    unsigned char* destination = row.destination;
    for (std::size_t i = 0; i < row.pixels; ++i) {
        const __m128i pixel = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
        const __m128i steps = _mm_shuffle_epi8(pixel, inColorLanes);
        const __m128i values = _mm_load_si128(reinterpret_cast<const __m128i*>(&field[i]->values));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(destination), _mm_shuffle_epi8(values, steps));
        source += row.inColors;
        destination += row.outInks;
    }
}

} // namespace zvk::Pelkraft::Benchmarks
