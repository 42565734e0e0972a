#include "chunks/chunk_classes.h"
#include "chunks/chunk_facility.h"
#include "chunks/row_walk.h"
#include "chunks/units_vector.h"
#include "common/chunk_header.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* invalidTrail = "Invalid";

// Where a load stands: pixels begin anywhere in the row's units, which are read once, in order.
struct Spreading
{
    const unsigned char* row;
    unsigned char* slot;
    // The last unit read, of which the next pixel may still want some bytes.
    __m128i unit;
};

[[gnu::always_inline]] inline __m128i ReadUnit(Spreading& spreading)
{
    spreading.unit = LoadRowUnit(spreading.row);
    spreading.row += unitBytes;
    return spreading.unit;
}

[[gnu::always_inline]] inline void WriteUnit(Spreading& spreading, __m128i unit)
{
    StoreSlotUnit(spreading.slot, unit);
    spreading.slot += unitBytes;
}

// The next 16 bytes of the row, which begin shift bytes into a unit.
template <int shift>
[[gnu::always_inline]] inline __m128i ReadAcrossUnits(Spreading& spreading)
{
    if constexpr (shift == 0)
        return ReadUnit(spreading);
    const __m128i low = spreading.unit;
    return AlignUnits<shift>(low, ReadUnit(spreading));
}

// A pixel's last unit is not read across a unit's end unless the pixel goes there, since there
// may be no row behind the last pixel.
template <int shift, int trail>
[[gnu::always_inline]] inline __m128i ReadTrail(Spreading& spreading)
{
    if constexpr (shift == 0 || shift + trail > unitBytes)
        return ReadAcrossUnits<shift>(spreading);
    else
        return ShiftUnit<shift>(spreading.unit);
}

template <typename Policy, int trail>
void LoadChunk(const void* row, void* chunkHeader)
{
    auto* header = static_cast<ChunkHeader*>(chunkHeader);
    const LeadingLoop<Policy> leadingUnits(header->loadUnitCount);
    Spreading spreading{static_cast<const unsigned char*>(row),
                        static_cast<unsigned char*>(chunkHeader) + headerBytes,
                        _mm_setzero_si128()};

    // Ascending: a reversed row may lie inside these same slots.
    Unroll<slotsPerChunk>([&](auto pixel) __attribute__((always_inline)) {
        // Whole units in front of the trails don't count in a place within a unit.
        constexpr int shift = pixel * trail % unitBytes;
        leadingUnits.ForEach([&]() __attribute__((always_inline)) {
            WriteUnit(spreading, ReadAcrossUnits<shift>(spreading));
        });
        WriteUnit(spreading, ReadTrail<shift, trail>(spreading));
    });
}

struct LoadMethods
{
    LoadMethod byTrail[unitBytes];
};

template <typename Policy, int... index>
constexpr LoadMethods MakeMethods(std::integer_sequence<int, index...>)
{
    return {{LoadChunk<Policy, index + 1>...}};
}

template <typename Policy>
constexpr LoadMethods methods = MakeMethods<Policy>(std::make_integer_sequence<int, unitBytes>{});

template <typename Policy>
class ChunkMultiLoaderI final : public InterleavedLoader
{
public:
    LoadMethod GetLoadMethod(const ChunkLoadFacilityInternal& facility) const override
    {
        const std::uint64_t pixelBytes = static_cast<std::uint64_t>(facility.channels) *
                                         static_cast<std::uint64_t>(facility.bytesPerSample);
        const std::uint64_t index = (pixelBytes - 1) % unitBytes;
        if (index >= unitBytes)
            throw invalidTrail;
        return methods<Policy>.byTrail[index];
    }
};

template <typename Policy>
constexpr ChunkMultiLoaderI<Policy> loader;

} // namespace

const IChunkLoaderDescriptor* VectorRoad::GetInterleavedLoader(std::uint64_t unitCount)
{
    switch (unitCount) {
    case 0:
    case 1:
        return &loader<FixedSize<0>>;
    case 2:
        return &loader<FixedSize<1>>;
    case 3:
        return &loader<FixedSize<2>>;
    case 4:
        return &loader<FixedSize<3>>;
    case 5:
        return &loader<FixedSize<4>>;
    default:
        return &loader<VariableSize>;
    }
}

} // namespace zvk::Pelkraft
