#include "converters/convert_facility.h"

#include "common/road.h"
#include "common/units.h"
#include "converters/convert_classes.h"
#include "converters/remap_base.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedPacker =
    "zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported format";
constexpr const char* unsupportedUnpacker =
    "zvk::Pelkraft::ChunkConvertFacility::Create_Unpacker unsupported format";
constexpr const char* unsupportedRepeat =
    "ChunkConvertFacilityInternal::SelectDescriptor Unsupported format";
constexpr const char* unsupportedRemapDepth = "unsupported X86 remap bit depth";

const IChunkConvertDescriptor* SelectConvert8to16(const ChunkConvertFacility& facility,
                                                  const ImageRowFormat&)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetConvert8to16bit();
    return PortableRoad::GetConvert8to16bit();
}

const IChunkConvertDescriptor* SelectConvert16to8(const ChunkConvertFacility& facility,
                                                  const ImageRowFormat&)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetConvert16to8bit();
    return PortableRoad::GetConvert16to8bit();
}

template <std::int32_t depth>
const IChunkConvertDescriptor* SelectPacker(const ChunkConvertFacility& facility,
                                            const ImageRowFormat&)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetPacker(depth);
    return PortableRoad::GetPacker(depth);
}

template <std::int32_t depth>
const IChunkConvertDescriptor* SelectUnpacker(const ChunkConvertFacility& facility,
                                              const ImageRowFormat&)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetUnpacker(depth);
    return PortableRoad::GetUnpacker(depth);
}

const IChunkConvertDescriptor* SelectReverse(const ChunkConvertFacility& facility,
                                             const ImageRowFormat&)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetReverse();
    return PortableRoad::GetReverse();
}

// Mirroring is the work of another step.
std::int32_t MagnitudeOf(std::int32_t repeat)
{
    // Negated as unsigned: the lowest number has no positive twin and must still be refused.
    const auto magnitude = static_cast<std::uint32_t>(repeat);
    return static_cast<std::int32_t>(repeat < 0 ? 0U - magnitude : magnitude);
}

ChunkConvertFacility MakeFacility(std::int32_t sseVersion, ChunkConvertFacility::Select select)
{
    ChunkConvertFacility facility;
    facility.sseVersion = sseVersion;
    facility.select = select;
    return facility;
}

} // namespace

ChunkConvertFacility ChunkConvertFacility::Create_Convert8to16(std::int32_t sseVersion)
{
    return MakeFacility(sseVersion, SelectConvert8to16);
}

ChunkConvertFacility ChunkConvertFacility::Create_Convert16to8(std::int32_t sseVersion)
{
    return MakeFacility(sseVersion, SelectConvert16to8);
}

ChunkConvertFacility ChunkConvertFacility::Create_Packer(std::int32_t sseVersion,
                                                         std::int32_t depth)
{
    if (depth != 1 && depth != 2)
        throw unsupportedPacker;
    return MakeFacility(sseVersion, depth == 1 ? SelectPacker<1> : SelectPacker<2>);
}

ChunkConvertFacility ChunkConvertFacility::Create_Unpacker(std::int32_t sseVersion,
                                                           std::int32_t depth)
{
    if (depth != 1 && depth != 2)
        throw unsupportedUnpacker;
    return MakeFacility(sseVersion, depth == 1 ? SelectUnpacker<1> : SelectUnpacker<2>);
}

ChunkConvertFacility ChunkConvertFacility::Create_PixelRepeat(std::int32_t sseVersion,
                                                              std::int32_t repeat)
{
    auto facility = MakeFacility(sseVersion, ChunkConvertFacilityInternal::SelectDescriptor);
    facility.repeat = repeat;
    return facility;
}

ChunkConvertFacility ChunkConvertFacility::Create_Remap(std::int32_t sseVersion,
                                                        std::uint64_t remapChannels,
                                                        const std::int32_t* remap)
{
    auto facility = MakeFacility(sseVersion, ChunkConvertFacilityInternal::SelectRemapDescriptor);
    facility.remapChannels = remapChannels;
    facility.remap = remap;
    return facility;
}

ChunkConvertFacility ChunkConvertFacility::Create_Reverse(std::int32_t sseVersion)
{
    return MakeFacility(sseVersion, SelectReverse);
}

const IChunkConvertDescriptor*
ChunkConvertFacilityInternal::SelectDescriptor(const ChunkConvertFacility& facility,
                                               const ImageRowFormat& input)
{
    const std::int32_t factor = MagnitudeOf(facility.repeat);
    if (factor != 1 && factor != 2 && factor != 4)
        throw unsupportedRepeat;

    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetPixelRepeat(factor, CountUnits(PixelBytes(input)));
    return PortableRoad::GetPixelRepeat(factor);
}

const IChunkConvertDescriptor*
ChunkConvertFacilityInternal::SelectRemapDescriptor(const ChunkConvertFacility& facility,
                                                    const ImageRowFormat& input)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return VectorRoad::GetRemap(CountUnits(PixelBytes(input)),
                                        CountRemapOutputUnits(facility, input));

    const std::int64_t bytesPerSample = BytesPerSample(input.bits);
    if (bytesPerSample != 1 && bytesPerSample != 2)
        throw unsupportedRemapDepth;
    return PortableRoad::GetRemap(bytesPerSample);
}

} // namespace zvk::Pelkraft
