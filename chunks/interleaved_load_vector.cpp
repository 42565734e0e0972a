#include "chunks/method_list_vector.h"
#include "chunks/units_vector.h"
#include "common/chunk_header.h"
#include "common/inlining.h"

namespace zvk::Pelkraft {
namespace {

// A load keeps its place here. Pixels begin anywhere in the row's units, which are read once, in
// order.
struct Spreading
{
    const unsigned char* row;
    unsigned char* slot;
    // The next pixel may still want some bytes of the last unit read.
    __m128i unit;
};

PELKRAFT_ALWAYS_INLINE inline __m128i ReadUnit(Spreading& spreading)
{
    spreading.unit = LoadRowUnit(spreading.row);
    spreading.row += unitBytes;
    return spreading.unit;
}

PELKRAFT_ALWAYS_INLINE inline void WriteUnit(Spreading& spreading, __m128i unit)
{
    StoreSlotUnit(spreading.slot, unit);
    spreading.slot += unitBytes;
}

// The next 16 bytes of the row, which begin shift bytes into a unit.
template <int shift>
PELKRAFT_ALWAYS_INLINE inline __m128i ReadAcrossUnits(Spreading& spreading)
{
    if constexpr (shift == 0)
        return ReadUnit(spreading);
    const __m128i low = spreading.unit;
    return AlignUnits<shift>(low, ReadUnit(spreading));
}

// A pixel's last unit is not read across a unit's end unless the pixel goes there, since there
// may be no row after the last pixel.
template <int shift, int trail>
PELKRAFT_ALWAYS_INLINE inline __m128i ReadTrail(Spreading& spreading)
{
    if constexpr (shift == 0 || shift + trail > unitBytes)
        return ReadAcrossUnits<shift>(spreading);
    else
        return ShiftUnit<shift>(spreading.unit);
}

struct LoadMove
{
    template <typename Policy, int trail>
    static void MoveChunk(const void* row, void* chunkHeader)
    {
        auto* header = static_cast<ChunkHeader*>(chunkHeader);
        const LeadingLoop<Policy> leadingUnits(header->loadUnitCount);
        Spreading spreading{static_cast<const unsigned char*>(row),
                            static_cast<unsigned char*>(chunkHeader) + headerBytes,
                            _mm_setzero_si128()};

        // Ascending: a reversed row may lie inside these same slots.
        Unroll<slotsPerChunk>([&](auto pixel) PELKRAFT_ALWAYS_INLINE {
            // Whole units before the trails don't count in a place within a unit.
            constexpr int shift = pixel * trail % unitBytes;
            leadingUnits.ForEach([&]() PELKRAFT_ALWAYS_INLINE {
                WriteUnit(spreading, ReadAcrossUnits<shift>(spreading));
            });
            WriteUnit(spreading, ReadTrail<shift, trail>(spreading));
        });
    }
};

} // namespace

const ChunkMethod* VectorRoad::GetInterleavedLoads(int leadingUnits)
{
    const auto& methods = byLeadingUnits<LoadMove>;
    return methods[leadingUnits];
}

} // namespace zvk::Pelkraft
