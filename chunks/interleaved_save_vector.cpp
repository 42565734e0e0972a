#include "chunks/method_list_vector.h"
#include "chunks/units_vector.h"
#include "common/chunk_header.h"
#include "common/inlining.h"

#include <type_traits>

namespace zvk::Pelkraft {
namespace {

// A save keeps its place here. The row is written in whole units, once each and in order.
struct Gathering
{
    const unsigned char* slot;
    unsigned char* row;
    // Its top bytes are the last ones gathered, those that fill no row unit yet among them.
    __m128i gathered;
};

// Takes the low bytes of the next slot unit after the pending ones. Bytes above them in the slot
// are never aligned into the row.
template <int pending, int bytes>
PELKRAFT_ALWAYS_INLINE inline void GatherUnit(Gathering& gathering)
{
    const __m128i unit = LoadSlotUnit(gathering.slot);
    gathering.slot += unitBytes;
    if constexpr (pending + bytes < unitBytes) {
        gathering.gathered = AlignUnits<bytes>(gathering.gathered, unit);
    } else {
        StoreRowUnit(gathering.row, AlignUnits<unitBytes - pending>(gathering.gathered, unit));
        gathering.row += unitBytes;
        // From here on only bytes of this unit are pending: nothing has to wait for the others.
        gathering.gathered = AlignUnits<bytes>(unit, unit);
    }
}

template <typename Policy, int trail>
PELKRAFT_ALWAYS_INLINE inline void GatherPixels(Gathering gathering,
                                                const LeadingLoop<Policy>& leadingUnits)
{
    Unroll<slotsPerChunk>([&](auto pixel) PELKRAFT_ALWAYS_INLINE {
        // Whole units before the trails don't count in a place within a unit.
        constexpr int pending = pixel * trail % unitBytes;
        leadingUnits.ForEach(
            [&]() PELKRAFT_ALWAYS_INLINE { GatherUnit<pending, unitBytes>(gathering); });
        GatherUnit<pending, trail>(gathering);
    });
}

// The low bytes of so many slots side by side, then as many junk bytes.
template <int trail, int slotCount>
PELKRAFT_ALWAYS_INLINE inline __m128i JoinSlots(const unsigned char* slots)
{
    if constexpr (slotCount == 1) {
        return LoadSlotUnit(slots);
    } else {
        constexpr int half = slotCount / 2;
        const __m128i first = JoinSlots<trail, half>(slots);
        const __m128i second = JoinSlots<trail, half>(slots + half * unitBytes);
        return UnpackLow<half * trail>(first, second);
    }
}

// Short pixels that never lie across two row units: each row unit is a tree of its own.
template <int trail>
PELKRAFT_ALWAYS_INLINE inline void JoinPixels(const Gathering& gathering)
{
    constexpr int slotsPerUnit = unitBytes / trail;
    Unroll<trail>([&](auto unit) PELKRAFT_ALWAYS_INLINE {
        const unsigned char* slots = gathering.slot + unit * slotsPerUnit * unitBytes;
        StoreRowUnit(gathering.row + unit * unitBytes, JoinSlots<trail, slotsPerUnit>(slots));
    });
}

struct SaveMove
{
    template <typename Policy, int trail>
    static void MoveChunk(const void* chunkHeader, void* row)
    {
        const auto* header = static_cast<const ChunkHeader*>(chunkHeader);
        const Gathering gathering{static_cast<const unsigned char*>(chunkHeader) + headerBytes,
                                  static_cast<unsigned char*>(row), _mm_setzero_si128()};

        if constexpr (std::is_same_v<Policy, LeadingUnits<0>> && unitBytes % trail == 0)
            JoinPixels<trail>(gathering);
        else
            GatherPixels<Policy, trail>(gathering, LeadingLoop<Policy>(header->saveUnitCount));
    }
};

} // namespace

const ChunkMethod* VectorRoad::GetInterleavedSaves(int leadingUnits)
{
    const auto& methods = byLeadingUnits<SaveMove>;
    return methods[leadingUnits];
}

} // namespace zvk::Pelkraft
