#pragma once

#include "converters/convert_descriptor.h"

#include <cstdint>

// The doors of the files that hold the converter classes.
namespace zvk::Pelkraft::PortableRoad {

const IChunkConvertDescriptor* GetConvert8to16bit();
const IChunkConvertDescriptor* GetConvert16to8bit();
// depth is 1 or 2.
const IChunkConvertDescriptor* GetPacker(std::int32_t depth);
const IChunkConvertDescriptor* GetUnpacker(std::int32_t depth);
const IChunkConvertDescriptor* GetReverse();
// factor is 1, 2 or 4.
const IChunkConvertDescriptor* GetPixelRepeat(std::int32_t factor);
// bytesPerSample is 1 or 2.
const IChunkConvertDescriptor* GetRemap(std::int64_t bytesPerSample);

} // namespace zvk::Pelkraft::PortableRoad

namespace zvk::Pelkraft::VectorRoad {

const IChunkConvertDescriptor* GetConvert8to16bit();
const IChunkConvertDescriptor* GetConvert16to8bit();
const IChunkConvertDescriptor* GetPacker(std::int32_t depth);
const IChunkConvertDescriptor* GetUnpacker(std::int32_t depth);
const IChunkConvertDescriptor* GetReverse();
const IChunkConvertDescriptor* GetPixelRepeat(std::int32_t factor, std::uint64_t unitCount);
const IChunkConvertDescriptor* GetRemap(std::uint64_t inputUnits, std::uint64_t outputUnits);

} // namespace zvk::Pelkraft::VectorRoad
