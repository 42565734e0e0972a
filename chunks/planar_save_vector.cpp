#include "chunks/chunk_classes.h"
#include "chunks/chunk_facility.h"
#include "chunks/row_walk.h"
#include "chunks/transpose_vector.h"
#include "common/chunk_header.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* invalidTrailP8 = "Invalid";
constexpr const char* invalidTrailP16 = "ChunkMultiSaverP16::GetLoadMethod Invalid trail";

// Where a save stands: the unit of the first slot that a group fills, and its first plane.
struct Group
{
    const unsigned char* slots;
    std::int64_t slotBytes;
    unsigned char* row;
    std::int64_t pitch;
};

// As many slots as a unit of a plane has samples: 16 of a byte or 8 of two.
template <int sampleBytes, int planes>
[[gnu::always_inline]] inline void SaveUnitOfPlanes(const Group& group)
{
    constexpr int pixels = unitBytes / sampleBytes;

    Units<pixels> slotUnits;
    Unroll<pixels>([&](auto pixel) __attribute__((always_inline)) {
        slotUnits.at[pixel] = LoadSlotUnit(group.slots + pixel * group.slotBytes);
    });
    const auto samples = Transpose<sampleBytes, pixels, planes>(slotUnits);
    Unroll<planes>([&](auto plane) __attribute__((always_inline)) {
        StoreRowUnit(group.row + plane * group.pitch, samples.at[plane]);
    });
}

template <int sampleBytes, int planes>
[[gnu::always_inline]] inline void SavePlanes(Group group)
{
    SaveUnitOfPlanes<sampleBytes, planes>(group);
    if constexpr (sampleBytes == 2) {
        group.row += unitBytes;
        group.slots += unitBytes / sampleBytes * group.slotBytes;
        SaveUnitOfPlanes<sampleBytes, planes>(group);
    }
}

// A function of its own: all methods that take the unit count at run time share it.
template <int sampleBytes>
void SaveFullGroup(const Group& group)
{
    SavePlanes<sampleBytes, unitBytes / sampleBytes>(group);
}

template <int sampleBytes>
Group SaveFullGroups(Group group, std::uint64_t unitCount)
{
    constexpr int planes = unitBytes / sampleBytes;
    for (std::uint64_t unit = 1; unit < unitCount; ++unit) {
        SaveFullGroup<sampleBytes>(group);
        group.row += planes * group.pitch;
        group.slots += unitBytes;
    }
    return group;
}

template <typename Policy>
constexpr bool isOneUnit = false;
template <>
constexpr bool isOneUnit<FixedSize<1>> = true;

template <typename Policy, int sampleBytes, int planes>
void SaveChunk(const void* chunkHeader, void* row)
{
    const auto* header = static_cast<const ChunkHeader*>(chunkHeader);
    Group group{static_cast<const unsigned char*>(chunkHeader) + headerBytes, unitBytes,
                static_cast<unsigned char*>(row),
                static_cast<std::int64_t>(header->savePlanePitch)};
    if constexpr (!isOneUnit<Policy>) {
        group.slotBytes = static_cast<std::int64_t>(header->saveUnitCount) * unitBytes;
        group = SaveFullGroups<sampleBytes>(group, header->saveUnitCount);
    }
    SavePlanes<sampleBytes, planes>(group);
}

template <int sampleBytes>
struct SaveMethods
{
    SaveMethod byPlanes[unitBytes / sampleBytes];
};

template <typename Policy, int sampleBytes, int... index>
constexpr SaveMethods<sampleBytes> MakeMethods(std::integer_sequence<int, index...>)
{
    return {{SaveChunk<Policy, sampleBytes, index + 1>...}};
}

template <typename Policy, int sampleBytes>
constexpr SaveMethods<sampleBytes> methods =
    MakeMethods<Policy, sampleBytes>(std::make_integer_sequence<int, unitBytes / sampleBytes>{});

template <typename Policy>
class ChunkMultiSaverP8 final : public PlanarSaver
{
public:
    SaveMethod GetLoadMethod(const ChunkSaveFacilityInternal& facility) const override
    {
        const std::uint64_t pixelBytes = static_cast<std::uint64_t>(facility.channels) *
                                         static_cast<std::uint64_t>(facility.bytesPerSample);
        const std::uint64_t index = (pixelBytes - 1) % unitBytes;
        if (index >= unitBytes)
            throw invalidTrailP8;
        return methods<Policy, 1>.byPlanes[index];
    }
};

template <typename Policy>
class ChunkMultiSaverP16 final : public PlanarSaver
{
public:
    SaveMethod GetLoadMethod(const ChunkSaveFacilityInternal& facility) const override
    {
        const std::uint64_t pixelBytes = static_cast<std::uint64_t>(facility.channels) *
                                         static_cast<std::uint64_t>(facility.bytesPerSample);
        const std::uint64_t lastUnit = (pixelBytes - 1) / unitBytes * unitBytes;
        const std::uint64_t planes = (pixelBytes - lastUnit) / 2;
        if (planes < 1 || planes > unitBytes / 2)
            throw invalidTrailP16;
        return methods<Policy, 2>.byPlanes[planes - 1];
    }
};

constexpr ChunkMultiSaverP8<FixedSize<1>> shortByteSaver;
constexpr ChunkMultiSaverP8<VariableSize> byteSaver;
constexpr ChunkMultiSaverP16<FixedSize<1>> shortWordSaver;
constexpr ChunkMultiSaverP16<VariableSize> wordSaver;

const IChunkSaverDescriptor* ByteSaver(bool oneUnit)
{
    if (oneUnit)
        return &shortByteSaver;
    return &byteSaver;
}

const IChunkSaverDescriptor* WordSaver(bool oneUnit)
{
    if (oneUnit)
        return &shortWordSaver;
    return &wordSaver;
}

} // namespace

const IChunkSaverDescriptor* VectorRoad::GetPlanarSaver(std::int64_t bytesPerSample,
                                                        std::uint64_t unitCount)
{
    return bytesPerSample == 1 ? ByteSaver(unitCount <= 1) : WordSaver(unitCount <= 1);
}

} // namespace zvk::Pelkraft
