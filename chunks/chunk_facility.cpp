#include "chunks/chunk_facility.h"

#include "chunks/chunk_classes.h"
#include "common/road.h"
#include "common/units.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedLoad =
    "ChunkLoadFacilityInternal::SelectDescriptor Unsupported format";
constexpr const char* unsupportedLoadX86 =
    "ChunkLoadFacilityInternal::SelectDescriptorX86 Unsupported format";
constexpr const char* unsupportedSave =
    "ChunkSaveFacilityInternal::SelectDescriptor Unsupported format";
constexpr const char* unsupportedSaveX86 =
    "ChunkSaveFacilityInternal::SelectDescriptorX86 Unsupported format";

// Interleaved rows are moved by the pixel, so that any sample will do.
template <typename Facility>
bool IsServed(const Facility& facility, std::int32_t layout)
{
    return layout == LayoutInterleaved || facility.bytesPerSample == 1 ||
           facility.bytesPerSample == 2;
}

template <typename Facility>
std::uint64_t UnitsOf(const Facility& facility)
{
    return CountUnits(static_cast<std::uint64_t>(facility.channels) *
                      static_cast<std::uint64_t>(facility.bytesPerSample));
}

} // namespace

ChunkLoadFacilityInternal ChunkLoadFacilityInternal::Create(const ImageRowFormat& format,
                                                            std::int32_t sseVersion)
{
    ChunkLoadFacilityInternal facility{};
    facility.channels = format.channels;
    facility.bytesPerSample = BytesPerSample(format.bits);
    facility.columns = CountColumns(format, format.width);
    facility.reversed = format.reversed;
    facility.descriptor = RoadOf(sseVersion) != Road::Portable
                              ? SelectDescriptor(facility, format.layout)
                              : SelectDescriptorX86(facility, format.layout);
    return facility;
}

const IChunkLoaderDescriptor*
ChunkLoadFacilityInternal::SelectDescriptor(const ChunkLoadFacilityInternal& facility,
                                            std::int32_t layout)
{
    if (!IsServed(facility, layout))
        throw unsupportedLoad;
    if constexpr (hasVectorRoad) {
        if (layout == LayoutInterleaved)
            return VectorRoad::GetInterleavedLoader(UnitsOf(facility));
        return VectorRoad::GetPlanarLoader(facility.bytesPerSample, UnitsOf(facility));
    }
    return SelectDescriptorX86(facility, layout);
}

const IChunkLoaderDescriptor*
ChunkLoadFacilityInternal::SelectDescriptorX86(const ChunkLoadFacilityInternal& facility,
                                               std::int32_t layout)
{
    if (!IsServed(facility, layout))
        throw unsupportedLoadX86;
    if (layout == LayoutInterleaved)
        return PortableRoad::GetInterleavedLoader();
    return PortableRoad::GetPlanarLoader(facility.bytesPerSample);
}

ChunkSaveFacilityInternal ChunkSaveFacilityInternal::Create(const ImageRowFormat& format,
                                                            std::int32_t sseVersion)
{
    ChunkSaveFacilityInternal facility{};
    facility.channels = format.channels;
    facility.bytesPerSample = BytesPerSample(format.bits);
    facility.columns = CountColumns(format, format.width);
    facility.descriptor = RoadOf(sseVersion) != Road::Portable
                              ? SelectDescriptor(facility, format.layout)
                              : SelectDescriptorX86(facility, format.layout);
    return facility;
}

const IChunkSaverDescriptor*
ChunkSaveFacilityInternal::SelectDescriptor(const ChunkSaveFacilityInternal& facility,
                                            std::int32_t layout)
{
    if (!IsServed(facility, layout))
        throw unsupportedSave;
    if constexpr (hasVectorRoad) {
        if (layout == LayoutInterleaved)
            return VectorRoad::GetInterleavedSaver(UnitsOf(facility));
        return VectorRoad::GetPlanarSaver(facility.bytesPerSample, UnitsOf(facility));
    }
    return SelectDescriptorX86(facility, layout);
}

const IChunkSaverDescriptor*
ChunkSaveFacilityInternal::SelectDescriptorX86(const ChunkSaveFacilityInternal& facility,
                                               std::int32_t layout)
{
    if (!IsServed(facility, layout))
        throw unsupportedSaveX86;
    if (layout == LayoutInterleaved)
        return PortableRoad::GetInterleavedSaver();
    return PortableRoad::GetPlanarSaver(facility.bytesPerSample);
}

} // namespace zvk::Pelkraft
