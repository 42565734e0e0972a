#include "converters/depth_base.h"

#include "converters/convert_facility.h"
#include "converters/output_format.h"

namespace zvk::Pelkraft {

// The slots change their size, so the output needs chunks of its own.
constexpr ChunkConvertMetrics depthMetrics = {
    .inputChunks = 1, .outputChunks = 1, .parameterBytes = 0, .ownRegion = true};

ChunkConvertMetrics& Convert8to16bitBase::GetMetrics(ChunkConvertMetrics& out,
                                                     const ChunkConvertFacility&,
                                                     const ImageRowFormat&) const
{
    return out = depthMetrics;
}

ImageRowFormat& Convert8to16bitBase::GetOutputFormat(ImageRowFormat& out,
                                                     const ChunkConvertFacility&,
                                                     const ImageRowFormat& input) const
{
    return SetInterleavedFormat(out, 16, input.channels);
}

ChunkConvertMetrics& Convert16to8bitBase::GetMetrics(ChunkConvertMetrics& out,
                                                     const ChunkConvertFacility&,
                                                     const ImageRowFormat&) const
{
    return out = depthMetrics;
}

ImageRowFormat& Convert16to8bitBase::GetOutputFormat(ImageRowFormat& out,
                                                     const ChunkConvertFacility&,
                                                     const ImageRowFormat& input) const
{
    return SetInterleavedFormat(out, 8, input.channels);
}

} // namespace zvk::Pelkraft
