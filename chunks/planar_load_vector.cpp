#include "chunks/chunk_classes.h"
#include "chunks/chunk_facility.h"
#include "chunks/row_walk.h"
#include "chunks/transpose_vector.h"
#include "common/chunk_header.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* invalidTrailP8 = "ChunkMultiLoaderP8::GetLoadMethod Invalid trail";
constexpr const char* invalidTrailP16 = "ChunkMultiLoaderP16::GetLoadMethod Invalid trail";

// Where a load stands: the first plane of a group, and the unit of the first slot that it fills.
struct Group
{
    const unsigned char* row;
    std::int64_t pitch;
    unsigned char* slots;
    std::int64_t slotBytes;
};

// One unit of each plane, which is 16 samples of a byte or 8 of two, into as many slots.
template <int sampleBytes, int planes>
[[gnu::always_inline]] inline void LoadUnitOfPlanes(const Group& group)
{
    constexpr int pixels = unitBytes / sampleBytes;
    constexpr int pixelBytes = TransposedBytes(sampleBytes, planes);
    constexpr int pixelsPerUnit = unitBytes / pixelBytes;

    Units<planes> samples;
    Unroll<planes>([&](auto plane) __attribute__((always_inline)) {
        samples.at[plane] = LoadRowUnit(group.row + plane * group.pitch);
    });
    const auto slotUnits = Transpose<sampleBytes, planes, pixels>(samples);
    Unroll<pixels>([&](auto pixel) __attribute__((always_inline)) {
        constexpr int shift = pixel % pixelsPerUnit * pixelBytes;
        const __m128i unit = slotUnits.at[pixel / pixelsPerUnit];
        StoreSlotUnit(group.slots + pixel * group.slotBytes, ShiftUnit<shift>(unit));
    });
}

template <int sampleBytes, int planes>
[[gnu::always_inline]] inline void LoadPlanes(Group group)
{
    LoadUnitOfPlanes<sampleBytes, planes>(group);
    if constexpr (sampleBytes == 2) {
        group.row += unitBytes;
        group.slots += unitBytes / sampleBytes * group.slotBytes;
        LoadUnitOfPlanes<sampleBytes, planes>(group);
    }
}

// A function of its own: all methods that take the unit count at run time share it.
template <int sampleBytes>
void LoadFullGroup(const Group& group)
{
    LoadPlanes<sampleBytes, unitBytes / sampleBytes>(group);
}

template <int sampleBytes>
Group LoadFullGroups(Group group, std::uint64_t unitCount)
{
    constexpr int planes = unitBytes / sampleBytes;
    for (std::uint64_t unit = 1; unit < unitCount; ++unit) {
        LoadFullGroup<sampleBytes>(group);
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
void LoadChunk(const void* row, void* chunkHeader)
{
    const auto* header = static_cast<const ChunkHeader*>(chunkHeader);
    Group group{static_cast<const unsigned char*>(row),
                static_cast<std::int64_t>(header->loadPlanePitch),
                static_cast<unsigned char*>(chunkHeader) + headerBytes, unitBytes};
    if constexpr (!isOneUnit<Policy>) {
        group.slotBytes = static_cast<std::int64_t>(header->loadUnitCount) * unitBytes;
        group = LoadFullGroups<sampleBytes>(group, header->loadUnitCount);
    }
    LoadPlanes<sampleBytes, planes>(group);
}

template <int sampleBytes>
struct LoadMethods
{
    LoadMethod byPlanes[unitBytes / sampleBytes];
};

template <typename Policy, int sampleBytes, int... index>
constexpr LoadMethods<sampleBytes> MakeMethods(std::integer_sequence<int, index...>)
{
    return {{LoadChunk<Policy, sampleBytes, index + 1>...}};
}

template <typename Policy, int sampleBytes>
constexpr LoadMethods<sampleBytes> methods =
    MakeMethods<Policy, sampleBytes>(std::make_integer_sequence<int, unitBytes / sampleBytes>{});

template <typename Policy>
class ChunkMultiLoaderP8 final : public PlanarLoader
{
public:
    LoadMethod GetLoadMethod(const ChunkLoadFacilityInternal& facility) const override
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
class ChunkMultiLoaderP16 final : public PlanarLoader
{
public:
    LoadMethod GetLoadMethod(const ChunkLoadFacilityInternal& facility) const override
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

constexpr ChunkMultiLoaderP8<FixedSize<1>> shortByteLoader;
constexpr ChunkMultiLoaderP8<VariableSize> byteLoader;
constexpr ChunkMultiLoaderP16<FixedSize<1>> shortWordLoader;
constexpr ChunkMultiLoaderP16<VariableSize> wordLoader;

const IChunkLoaderDescriptor* ByteLoader(bool oneUnit)
{
    if (oneUnit)
        return &shortByteLoader;
    return &byteLoader;
}

const IChunkLoaderDescriptor* WordLoader(bool oneUnit)
{
    if (oneUnit)
        return &shortWordLoader;
    return &wordLoader;
}

} // namespace

const IChunkLoaderDescriptor* VectorRoad::GetPlanarLoader(std::int64_t bytesPerSample,
                                                          std::uint64_t unitCount)
{
    return bytesPerSample == 1 ? ByteLoader(unitCount <= 1) : WordLoader(unitCount <= 1);
}

} // namespace zvk::Pelkraft
