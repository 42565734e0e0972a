#pragma once

#include "converters/convert_descriptor.h"

namespace zvk::Pelkraft {

// What both roads answer alike about the reverse step.
class ConvertReverseBase : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~ConvertReverseBase() = default;
};

} // namespace zvk::Pelkraft
