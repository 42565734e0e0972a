#include "common/inlining.h"
#include "common/intrinsics_vector.h"
#include "copy/group_copy.h"

#include <utility>

namespace zvk::Pelkraft {
namespace {

constexpr int unitBytes = sizeof(__m128i);

// Row number k has its low k bytes set.
struct MaskTable
{
    alignas(unitBytes) unsigned char rows[unitBytes + 1][unitBytes];
};

constexpr MaskTable MakeMasks()
{
    MaskTable table{};
    for (int row = 0; row <= unitBytes; ++row)
        for (int byte = 0; byte < row; ++byte)
            table.rows[row][byte] = 0xFF;
    return table;
}

constexpr MaskTable masks = MakeMasks();

// The progress of a copy. Pieces of pixels lie anywhere in the source's units, which are read once,
// in order, and at the same places in the destination's, which are written once, in order.
struct Passage
{
    const __m128i* source;
    __m128i* destination;
    // The last unit read, of which the next piece may still want some bytes.
    __m128i read;
    // The unit under assembly, zero above the pieces that it holds so far.
    __m128i joined;
};

PELKRAFT_ALWAYS_INLINE inline __m128i ReadUnit(Passage& passage)
{
    passage.read = _mm_load_si128(passage.source);
    ++passage.source;
    return passage.read;
}

// A piece's bytes and those after it. No unit is read before a piece needs it: after the last one
// there may be none.
template <int bytes, int shift>
PELKRAFT_ALWAYS_INLINE inline __m128i ReadPiece(Passage& passage)
{
    if constexpr (shift == 0) {
        return ReadUnit(passage);
    } else if constexpr (shift + bytes > unitBytes) {
        const __m128i low = passage.read;
        return _mm_alignr_epi8(ReadUnit(passage), low, shift);
    } else {
        return _mm_srli_si128(passage.read, shift);
    }
}

template <int bytes>
PELKRAFT_ALWAYS_INLINE inline __m128i KeepLowBytes(__m128i unit)
{
    if constexpr (bytes == unitBytes)
        return unit;
    else
        return _mm_and_si128(unit,
                             _mm_load_si128(reinterpret_cast<const __m128i*>(masks.rows[bytes])));
}

template <int bytes, int shift>
PELKRAFT_ALWAYS_INLINE inline void JoinPiece(Passage& passage, __m128i piece)
{
    passage.joined = _mm_or_si128(passage.joined, _mm_slli_si128(piece, shift));
    if constexpr (shift + bytes >= unitBytes) {
        _mm_store_si128(passage.destination, passage.joined);
        ++passage.destination;
        // The bytes that had no room open the next unit.
        passage.joined = _mm_srli_si128(piece, unitBytes - shift);
    }
}

template <int bytes, int shift>
PELKRAFT_ALWAYS_INLINE inline void PassPiece(Passage& passage)
{
    JoinPiece<bytes, shift>(passage, KeepLowBytes<bytes>(ReadPiece<bytes, shift>(passage)));
}

// Whole units in front of the trails don't count in a place within a unit.
template <bool isOneUnit, int trail, int shift>
PELKRAFT_ALWAYS_INLINE inline void PassPixel(Passage& passage,
                                             [[maybe_unused]] std::size_t leadingUnits)
{
    if constexpr (!isOneUnit)
        for (std::size_t unit = 0; unit != leadingUnits; ++unit)
            PassPiece<unitBytes, shift>(passage);
    PassPiece<trail, shift>(passage);
}

template <bool isOneUnit, int trail, int... pixel>
PELKRAFT_ALWAYS_INLINE inline void PassGroup(Passage& passage, std::size_t leadingUnits,
                                             std::integer_sequence<int, pixel...>)
{
    (PassPixel<isOneUnit, trail, pixel * trail % unitBytes>(passage, leadingUnits), ...);
}

template <bool isOneUnit, int trail>
void CopyThroughRegisters(const GroupRun& run)
{
    const std::size_t leadingUnits = (run.pixelBytes - 1) / unitBytes;
    Passage passage{reinterpret_cast<const __m128i*>(run.source),
                    reinterpret_cast<__m128i*>(run.destination), _mm_setzero_si128(),
                    _mm_setzero_si128()};
    for (std::size_t group = 0; group != run.groups; ++group)
        PassGroup<isOneUnit, trail>(passage, leadingUnits,
                                    std::make_integer_sequence<int, pixelsPerGroup>{});
}

struct CopyTable
{
    GroupCopy byTrail[unitBytes];
};

template <bool isOneUnit, int... index>
constexpr CopyTable MakeCopies(std::integer_sequence<int, index...>)
{
    return {{CopyThroughRegisters<isOneUnit, index + 1>...}};
}

template <bool isOneUnit>
constexpr CopyTable copies = MakeCopies<isOneUnit>(std::make_integer_sequence<int, unitBytes>{});

} // namespace

GroupCopy VectorRoad::GetRegisterCopy(std::size_t pixelBytes)
{
    const std::size_t index = (pixelBytes - 1) % unitBytes;
    return pixelBytes <= unitBytes ? copies<true>.byTrail[index] : copies<false>.byTrail[index];
}

} // namespace zvk::Pelkraft
