#include "converters/reverse_base.h"

#include "converters/convert_facility.h"
#include "converters/output_format.h"

namespace zvk::Pelkraft {

ChunkConvertMetrics& ConvertReverseBase::GetMetrics(ChunkConvertMetrics& out,
                                                    const ChunkConvertFacility&,
                                                    const ImageRowFormat&) const
{
    return out = {.inputChunks = 1, .outputChunks = 1, .parameterBytes = 0, .ownRegion = false};
}

ImageRowFormat& ConvertReverseBase::GetOutputFormat(ImageRowFormat& out,
                                                    const ChunkConvertFacility&,
                                                    const ImageRowFormat& input) const
{
    return KeepFormat(out, input);
}

} // namespace zvk::Pelkraft
