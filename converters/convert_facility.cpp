#include "converters/convert_facility.h"

#include "common/road.h"
#include "common/units.h"
#include "converters/convert_steps.h"

namespace zvk::Pelkraft {
namespace {

constexpr const char* unsupportedPacker =
    "zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported format";
constexpr const char* unsupportedUnpacker =
    "zvk::Pelkraft::ChunkConvertFacility::Create_Unpacker unsupported format";
constexpr const char* unsupportedRepeat =
    "ChunkConvertFacilityInternal::SelectDescriptor Unsupported format";
constexpr const char* unsupportedRemapDepth = "unsupported X86 remap bit depth";

template <typename Class>
constexpr Class descriptor;

template <typename VectorClass, typename PortableClass>
const IChunkConvertDescriptor* SelectByRoad(const ChunkConvertFacility& facility,
                                            const ImageRowFormat&)
{
    if constexpr (hasVectorRoad)
        if (RoadOf(facility.sseVersion) != Road::Portable)
            return &descriptor<VectorClass>;
    return &descriptor<PortableClass>;
}

template <int factor>
const IChunkConvertDescriptor* SelectRepeat(const ChunkConvertFacility& facility,
                                            const ImageRowFormat& input)
{
    using Portable = ConvertPixelRepeatX86<factor>;
    if constexpr (factor != 1)
        if (CountUnits(PixelBytes(input)) == 1)
            return SelectByRoad<ConvertPixelRepeat<factor, OneUnit>, Portable>(facility, input);
    return SelectByRoad<ConvertPixelRepeat<factor, VariableSize>, Portable>(facility, input);
}

template <typename Sample>
const IChunkConvertDescriptor* SelectRemap(const ChunkConvertFacility& facility,
                                           const ImageRowFormat& input)
{
    using Portable = ConvertRemapX86<Sample>;
    const RemapUnits units = CountRemapUnits(facility, input);
    if (units.input == 1 && units.output == 1)
        return SelectByRoad<ConvertRemap<SlotUnits<1>, SlotUnits<1>>, Portable>(facility, input);
    if (units.input == 2 && units.output == 2)
        return SelectByRoad<ConvertRemap<SlotUnits<2>, SlotUnits<2>>, Portable>(facility, input);
    return SelectByRoad<ConvertRemap<VariableSize, VariableSize>, Portable>(facility, input);
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
    return MakeFacility(sseVersion, SelectByRoad<Convert8to16bit, Convert8to16bitX86>);
}

ChunkConvertFacility ChunkConvertFacility::Create_Convert16to8(std::int32_t sseVersion)
{
    return MakeFacility(sseVersion, SelectByRoad<Convert16to8bit, Convert16to8bitX86>);
}

ChunkConvertFacility ChunkConvertFacility::Create_Packer(std::int32_t sseVersion,
                                                         std::int32_t depth)
{
    if (depth != 1 && depth != 2)
        throw unsupportedPacker;
    return MakeFacility(sseVersion,
                        depth == 1 ? SelectByRoad<Convert8bitToNbit<1>, Convert8bitToNbitX86<1>>
                                   : SelectByRoad<Convert8bitToNbit<2>, Convert8bitToNbitX86<2>>);
}

ChunkConvertFacility ChunkConvertFacility::Create_Unpacker(std::int32_t sseVersion,
                                                           std::int32_t depth)
{
    if (depth != 1 && depth != 2)
        throw unsupportedUnpacker;
    return MakeFacility(sseVersion,
                        depth == 1 ? SelectByRoad<ConvertNbitTo8bit<1>, ConvertNbitTo8bitX86<1>>
                                   : SelectByRoad<ConvertNbitTo8bit<2>, ConvertNbitTo8bitX86<2>>);
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
    return MakeFacility(sseVersion, SelectByRoad<ConvertReverse, ConvertReverseX86>);
}

const IChunkConvertDescriptor*
ChunkConvertFacilityInternal::SelectDescriptor(const ChunkConvertFacility& facility,
                                               const ImageRowFormat& input)
{
    switch (MagnitudeOf(facility.repeat)) {
    case 1:
        return SelectRepeat<1>(facility, input);
    case 2:
        return SelectRepeat<2>(facility, input);
    case 4:
        return SelectRepeat<4>(facility, input);
    default:
        throw unsupportedRepeat;
    }
}

const IChunkConvertDescriptor*
ChunkConvertFacilityInternal::SelectRemapDescriptor(const ChunkConvertFacility& facility,
                                                    const ImageRowFormat& input)
{
    const std::int64_t bytesPerSample = BytesPerSample(input.bits);
    const bool isPortable = RoadOf(facility.sseVersion) == Road::Portable;
    if (isPortable && bytesPerSample != 1 && bytesPerSample != 2)
        throw unsupportedRemapDepth;
    return bytesPerSample == 1 ? SelectRemap<unsigned char>(facility, input)
                               : SelectRemap<unsigned short>(facility, input);
}

} // namespace zvk::Pelkraft
