#include "chunks/chunk_facility.h"

#include "chunks/chunk_classes.h"
#include "common/road.h"
#include "common/units.h"

#include <algorithm>

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedLoad =
    "ChunkLoadFacilityInternal::SelectDescriptor Unsupported format";
constexpr const char* unsupportedPortableLoad =
    "ChunkLoadFacilityInternal::SelectDescriptorX86 Unsupported format";
constexpr const char* unsupportedSave =
    "ChunkSaveFacilityInternal::SelectDescriptor Unsupported format";
constexpr const char* unsupportedPortableSave =
    "ChunkSaveFacilityInternal::SelectDescriptorX86 Unsupported format";

template <typename Class>
constexpr Class descriptor;

// Interleaved rows are moved by the pixel, so that any sample will do.
template <typename Facility>
void RequireServed(const Facility& facility, std::int32_t layout, const char* unsupported)
{
    if (layout != LayoutInterleaved && facility.bytesPerSample != 1 && facility.bytesPerSample != 2)
        throw unsupported;
}

template <typename Facility>
Facility CreateFacility(const ImageRowFormat& format, std::int32_t sseVersion)
{
    Facility facility{};
    facility.channels = format.channels;
    facility.bytesPerSample = BytesPerSample(format.bits);
    facility.columns = CountColumns(format, format.width);
    if constexpr (requires { facility.reversed; })
        facility.reversed = format.reversed;
    facility.descriptor = RoadOf(sseVersion) != Road::Portable
                              ? Facility::SelectDescriptor(facility, format.layout)
                              : Facility::SelectDescriptorX86(facility, format.layout);
    return facility;
}

template <template <typename> class Class, typename Facility>
auto SelectInterleaved(const Facility& facility) -> decltype(facility.descriptor)
{
    static constexpr decltype(facility.descriptor) byLeadingUnits[] = {
        &descriptor<Class<LeadingUnits<0>>>, &descriptor<Class<LeadingUnits<1>>>,
        &descriptor<Class<LeadingUnits<2>>>, &descriptor<Class<LeadingUnits<3>>>,
        &descriptor<Class<LeadingUnits<4>>>, &descriptor<Class<VariableSize>>};
    const std::uint64_t units = CountUnits(PixelBytesOf(facility));
    return byLeadingUnits[units <= 1 ? 0 : std::min<std::uint64_t>(units - 1, 5)];
}

template <template <typename> class Class, typename Facility>
auto SelectPlanar(const Facility& facility) -> decltype(facility.descriptor)
{
    if (CountUnits(PixelBytesOf(facility)) <= 1)
        return &descriptor<Class<OneUnit>>;
    return &descriptor<Class<VariableSize>>;
}

template <template <typename> class Interleaved, template <typename> class Bytes,
          template <typename> class Words, typename Facility>
auto SelectVector(const Facility& facility, std::int32_t layout, const char* unsupported)
    -> decltype(facility.descriptor)
{
    RequireServed(facility, layout, unsupported);
    if constexpr (!hasVectorRoad)
        return Facility::SelectDescriptorX86(facility, layout);
    else if (layout == LayoutInterleaved)
        return SelectInterleaved<Interleaved>(facility);
    else if (facility.bytesPerSample == 1)
        return SelectPlanar<Bytes>(facility);
    else
        return SelectPlanar<Words>(facility);
}

template <typename Interleaved, template <typename> class Planar, typename Facility>
auto SelectPortable(const Facility& facility, std::int32_t layout, const char* unsupported)
    -> decltype(facility.descriptor)
{
    RequireServed(facility, layout, unsupported);
    if (layout == LayoutInterleaved)
        return &descriptor<Interleaved>;
    if (facility.bytesPerSample == 1)
        return &descriptor<Planar<unsigned char>>;
    return &descriptor<Planar<unsigned short>>;
}

} // namespace

ChunkLoadFacilityInternal ChunkLoadFacilityInternal::Create(const ImageRowFormat& format,
                                                            std::int32_t sseVersion)
{
    return CreateFacility<ChunkLoadFacilityInternal>(format, sseVersion);
}

const IChunkLoaderDescriptor*
ChunkLoadFacilityInternal::SelectDescriptor(const ChunkLoadFacilityInternal& facility,
                                            std::int32_t layout)
{
    return SelectVector<ChunkMultiLoaderI, ChunkMultiLoaderP8, ChunkMultiLoaderP16>(
        facility, layout, unsupportedLoad);
}

const IChunkLoaderDescriptor*
ChunkLoadFacilityInternal::SelectDescriptorX86(const ChunkLoadFacilityInternal& facility,
                                               std::int32_t layout)
{
    return SelectPortable<ChunkMultiLoaderX86I, ChunkMultiLoaderX86>(facility, layout,
                                                                     unsupportedPortableLoad);
}

ChunkSaveFacilityInternal ChunkSaveFacilityInternal::Create(const ImageRowFormat& format,
                                                            std::int32_t sseVersion)
{
    return CreateFacility<ChunkSaveFacilityInternal>(format, sseVersion);
}

const IChunkSaverDescriptor*
ChunkSaveFacilityInternal::SelectDescriptor(const ChunkSaveFacilityInternal& facility,
                                            std::int32_t layout)
{
    return SelectVector<ChunkMultiSaverI, ChunkMultiSaverP8, ChunkMultiSaverP16>(facility, layout,
                                                                                 unsupportedSave);
}

const IChunkSaverDescriptor*
ChunkSaveFacilityInternal::SelectDescriptorX86(const ChunkSaveFacilityInternal& facility,
                                               std::int32_t layout)
{
    return SelectPortable<ChunkMultiSaverX86I, ChunkMultiSaverX86>(facility, layout,
                                                                   unsupportedPortableSave);
}

} // namespace zvk::Pelkraft
