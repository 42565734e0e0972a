#pragma once

#include "converters/convert_descriptor.h"

#include <cstdint>

namespace zvk::Pelkraft {

// Names one step of a chain. A null select stands for no step.
struct ChunkConvertFacility
{
    using Select = const IChunkConvertDescriptor* (*)(const ChunkConvertFacility& facility,
                                                      const ImageRowFormat& input);

    std::int32_t sseVersion = 0;
    // The caller's factor, negative for a mirror. Steps that repeat nothing leave it alone.
    std::int32_t repeat = 1;
    std::uint64_t remapChannels = 0;
    // The caller's table. No method reads it: it is turned into the parameter block.
    const std::int32_t* remap = nullptr;
    Select select = nullptr;

    static ChunkConvertFacility Create_Convert8to16(std::int32_t sseVersion);
    static ChunkConvertFacility Create_Convert16to8(std::int32_t sseVersion);
    // A depth other than 1 and 2 throws
    // "zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported format".
    static ChunkConvertFacility Create_Packer(std::int32_t sseVersion, std::int32_t depth);
    // A depth other than 1 and 2 throws
    // "zvk::Pelkraft::ChunkConvertFacility::Create_Unpacker unsupported format".
    static ChunkConvertFacility Create_Unpacker(std::int32_t sseVersion, std::int32_t depth);
    // The factor is checked by the selection and not here.
    static ChunkConvertFacility Create_PixelRepeat(std::int32_t sseVersion, std::int32_t repeat);
    static ChunkConvertFacility Create_Remap(std::int32_t sseVersion, std::uint64_t remapChannels,
                                             const std::int32_t* remap);
    static ChunkConvertFacility Create_Reverse(std::int32_t sseVersion);
};

// The selections that need more than the road.
struct ChunkConvertFacilityInternal
{
    // Selects in the repeat family. Throws
    // "ChunkConvertFacilityInternal::SelectDescriptor Unsupported format" for a factor other than
    // 1, 2 and 4, whatever its sign.
    static const IChunkConvertDescriptor* SelectDescriptor(const ChunkConvertFacility& facility,
                                                           const ImageRowFormat& input);
    // Throws "unsupported X86 remap bit depth" on the portable road for samples of more than two
    // bytes.
    static const IChunkConvertDescriptor*
    SelectRemapDescriptor(const ChunkConvertFacility& facility, const ImageRowFormat& input);
};

} // namespace zvk::Pelkraft
