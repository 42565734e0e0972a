#include "chunks/chunk_methods.h"
#include "chunks/method_list_vector.h"
#include "chunks/transpose_vector.h"
#include "common/chunk_header.h"
#include "common/inlining.h"

#include <type_traits>

namespace zvk::Pelkraft {
namespace {

// A move stands at the first plane of a group and at the unit of the first slot that it fills.
template <End end>
struct Group
{
    std::conditional_t<end == End::Load, const unsigned char*, unsigned char*> row;
    std::int64_t pitch;
    std::conditional_t<end == End::Load, unsigned char*, const unsigned char*> slots;
    std::int64_t slotBytes;
};

// One unit of each plane, which is 16 samples of a byte or 8 of two, into as many slots.
template <int sampleBytes, int planes>
PELKRAFT_ALWAYS_INLINE inline void MoveUnitOfPlanes(const Group<End::Load>& group)
{
    constexpr int pixels = unitBytes / sampleBytes;
    constexpr int pixelBytes = TransposedBytes(sampleBytes, planes);
    constexpr int pixelsPerUnit = unitBytes / pixelBytes;

    Units<planes> samples;
    Unroll<planes>([&](auto plane) PELKRAFT_ALWAYS_INLINE {
        samples.at[plane] = LoadRowUnit(group.row + plane * group.pitch);
    });
    const auto slotUnits = Transpose<sampleBytes, planes, pixels>(samples);
    Unroll<pixels>([&](auto pixel) PELKRAFT_ALWAYS_INLINE {
        constexpr int shift = pixel % pixelsPerUnit * pixelBytes;
        const __m128i unit = slotUnits.at[pixel / pixelsPerUnit];
        StoreSlotUnit(group.slots + pixel * group.slotBytes, ShiftUnit<shift>(unit));
    });
}

template <int sampleBytes, int planes>
PELKRAFT_ALWAYS_INLINE inline void MoveUnitOfPlanes(const Group<End::Save>& group)
{
    constexpr int pixels = unitBytes / sampleBytes;

    Units<pixels> slotUnits;
    Unroll<pixels>([&](auto pixel) PELKRAFT_ALWAYS_INLINE {
        slotUnits.at[pixel] = LoadSlotUnit(group.slots + pixel * group.slotBytes);
    });
    const auto samples = Transpose<sampleBytes, pixels, planes>(slotUnits);
    Unroll<planes>([&](auto plane) PELKRAFT_ALWAYS_INLINE {
        StoreRowUnit(group.row + plane * group.pitch, samples.at[plane]);
    });
}

template <int sampleBytes, int planes, End end>
PELKRAFT_ALWAYS_INLINE inline void MovePlanes(Group<end> group)
{
    MoveUnitOfPlanes<sampleBytes, planes>(group);
    if constexpr (sampleBytes == 2) {
        group.row += unitBytes;
        group.slots += unitBytes / sampleBytes * group.slotBytes;
        MoveUnitOfPlanes<sampleBytes, planes>(group);
    }
}

// This is no inline function: all methods that take the unit count at run time share it.
template <int sampleBytes, End end>
void MoveFullGroup(const Group<end>& group)
{
    MovePlanes<sampleBytes, unitBytes / sampleBytes>(group);
}

template <int sampleBytes, End end>
Group<end> MoveFullGroups(Group<end> group, std::uint64_t unitCount)
{
    constexpr int planes = unitBytes / sampleBytes;
    for (std::uint64_t unit = 1; unit < unitCount; ++unit) {
        MoveFullGroup<sampleBytes>(group);
        group.row += planes * group.pitch;
        group.slots += unitBytes;
    }
    return group;
}

// One plane alone needs nothing of the header.
template <End end, int sampleBytes>
struct PlaneMove
{
    template <typename Policy, int planes>
    static void MoveChunk(const void* from, void* to)
    {
        constexpr bool isLoad = end == End::Load;
        constexpr bool isOneUnit = std::is_same_v<Policy, OneUnit>;
        const auto* header = static_cast<const ChunkHeader*>(isLoad ? to : from);
        Group<end> group;
        if constexpr (isLoad)
            group = {static_cast<const unsigned char*>(from), 0,
                     static_cast<unsigned char*>(to) + headerBytes, unitBytes};
        else
            group = {static_cast<unsigned char*>(to), 0,
                     static_cast<const unsigned char*>(from) + headerBytes, unitBytes};
        if constexpr (planes > 1 || !isOneUnit)
            group.pitch =
                static_cast<std::int64_t>(isLoad ? header->loadPlanePitch : header->savePlanePitch);
        if constexpr (!isOneUnit) {
            const std::uint64_t units = isLoad ? header->loadUnitCount : header->saveUnitCount;
            group.slotBytes = static_cast<std::int64_t>(units) * unitBytes;
            group = MoveFullGroups<sampleBytes>(group, units);
        }
        MovePlanes<sampleBytes, planes>(group);
    }
};

template <End end, int sampleBytes>
const ChunkMethod* ListFor(bool isOneUnit)
{
    using Move = PlaneMove<end, sampleBytes>;
    constexpr int count = unitBytes / sampleBytes;
    return isOneUnit ? methods<Move, OneUnit, count>.at : methods<Move, VariableSize, count>.at;
}

template <End end>
const ChunkMethod* ListFor(std::size_t sampleBytes, bool isOneUnit)
{
    return sampleBytes == 1 ? ListFor<end, 1>(isOneUnit) : ListFor<end, 2>(isOneUnit);
}

} // namespace

const ChunkMethod* VectorRoad::GetPlanar(End end, std::size_t sampleBytes, bool isOneUnit)
{
    return end == End::Load ? ListFor<End::Load>(sampleBytes, isOneUnit)
                            : ListFor<End::Save>(sampleBytes, isOneUnit);
}

} // namespace zvk::Pelkraft
