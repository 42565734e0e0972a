#pragma once

#include "converters/convert_facility.h"
#include "rows/convert.h"

#include <array>
#include <cstddef>

namespace zvk::Pelkraft {

// Up to five records, in order; an empty record is a place without a step.
struct Chain
{
    std::array<ChunkConvertFacility, 5> facilities;
    std::size_t length = 0;
};

// The options that a chain has places for.
struct ChainOptions
{
    ChunkConvertFacility reverse;
    ChunkConvertFacility repeat;
    ChunkConvertFacility remap;
};

// A step that mirrors, if the factor asks for it.
ChunkConvertFacility ReverseFor(const ConversionRequest& request);

// Throws, before any record is built for it,
//   "zvk::Pelkraft::Convert unsupported conversion to 16 bit"
//   "zvk::Pelkraft::Convert unsupported conversion from 16 bit"
//   "zvk::Pelkraft::Convert unsupported conversion"
// and what Create_Packer and Create_Unpacker throw.
Chain ChooseChain(const FormatPair& formats, const ChainOptions& options, std::int32_t sseVersion);

} // namespace zvk::Pelkraft
