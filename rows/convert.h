#pragma once

#include "common/image_row_format.h"
#include "common/row_size.h"
#include "converters/convert_facility.h"
#include "pelkraft/image_row.h"

#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// What a row says of itself, asked once for each call: a derived row may answer as it likes.
struct RowView
{
    RowGeometry geometry;
    unsigned char* data;
};

RowView ViewOf(const ImageRow& row);

// factor is the signed repeat factor; a negative one reads the source back to front.
struct ConversionRequest
{
    RowView source;
    RowView destination;
    std::int32_t factor;
    std::int32_t sseVersion;
};

struct FormatPair
{
    ImageRowFormat source;
    ImageRowFormat destination;
};

// Both rows as the portal sees them, limited to the pixels that both have. Throws
//   "zvk::Pelkraft::ImageRowFormat unsupported bit depth"
//   "zvk::Pelkraft::ImageRowFormat invalid width"
// for the source, then for the destination.
FormatPair BuildFormats(const ConversionRequest& request);

// The way from one row to the other with at most one option, a repeat or a remap; an empty
// record is no option. Throws as BuildFormats, then
// "zvk::Pelkraft::Convert only one option is allowed", then what ChooseChain throws, then what
// RunChain throws.
void Convert(const ConversionRequest& request, const ChunkConvertFacility& repeatFacility,
             const ChunkConvertFacility& remapFacility);

// Refuses what no chain serves, then moves the pixels, if there are any. Throws
//   "zvk::Pelkraft::ImageRowFormat invalid width"
//   "zvk::Pelkraft::ImageRowFormat invalid channel count"
//   "zvk::Pelkraft::Convert unsupported conversion"
//   "zvk::Pelkraft::ImageRow::FillFromWithRemap unsupported conversion"
// and what the portal throws.
void RunChain(const ConversionRequest& request, const FormatPair& formats, std::size_t chainLength,
              const ChunkConvertFacility* chain);

} // namespace zvk::Pelkraft
