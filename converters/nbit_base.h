#pragma once

#include "converters/convert_descriptor.h"

#include <cstdint>

namespace zvk::Pelkraft {

// What both roads answer alike about packing to this depth, 1 or 2: a byte per sample becomes
// 8 or 4 samples per byte, the first in the highest bits.
template <int depth>
class Convert8bitToNbitBase : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~Convert8bitToNbitBase() = default;
};

// The way back.
template <int depth>
class ConvertNbitTo8bitBase : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~ConvertNbitTo8bitBase() = default;
};

extern template class Convert8bitToNbitBase<1>;
extern template class Convert8bitToNbitBase<2>;
extern template class ConvertNbitTo8bitBase<1>;
extern template class ConvertNbitTo8bitBase<2>;

// Bytes from the end of one unpacked chunk's slots to the start of the next one's.
std::uint64_t PackGap(const ImageRowFormat& input, const ChunkStepGeometry& geometry);

// Bytes from one unpacked chunk's header to the next.
std::uint64_t UnpackStride(const ChunkStepGeometry& geometry);

} // namespace zvk::Pelkraft
