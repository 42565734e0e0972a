#pragma once

#include "converters/convert_descriptor.h"

namespace zvk::Pelkraft {

// What both roads answer alike about 8 to 16 bits.
class Convert8to16bitBase : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~Convert8to16bitBase() = default;
};

// What both roads answer alike about 16 to 8 bits.
class Convert16to8bitBase : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~Convert16to8bitBase() = default;
};

} // namespace zvk::Pelkraft
