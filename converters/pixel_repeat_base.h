#pragma once

#include "converters/convert_descriptor.h"

#include <cstdint>

namespace zvk::Pelkraft {

// The block of all members, on both roads.
struct PixelRepeatBlock
{
    // Bytes between the starts of two chunks written in turn.
    std::uint64_t stride;
    // Of one slot.
    std::uint64_t unitCount;
};

PixelRepeatBlock MakePixelRepeatBlock(const ImageRowFormat& input,
                                      const ChunkStepGeometry& geometry);

// What both roads answer alike about writing each pixel `factor` times: 1, 2 or 4.
template <int factor>
class ConvertPixelRepeatBase : public IChunkConvertDescriptor
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~ConvertPixelRepeatBase() = default;
};

extern template class ConvertPixelRepeatBase<1>;
extern template class ConvertPixelRepeatBase<2>;
extern template class ConvertPixelRepeatBase<4>;

template <int factor>
using ConvertPixelRepeatBaseX86 = ConvertPixelRepeatBase<factor>;

} // namespace zvk::Pelkraft
