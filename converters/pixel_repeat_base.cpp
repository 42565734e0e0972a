#include "converters/pixel_repeat_base.h"

#include "common/units.h"
#include "converters/convert_facility.h"
#include "converters/output_format.h"

namespace zvk::Pelkraft {

PixelRepeatBlock MakePixelRepeatBlock(const ImageRowFormat& input,
                                      const ChunkStepGeometry& geometry)
{
    return {.stride = geometry.outputChunkStride * geometry.reduction,
            .unitCount = CountUnits(PixelBytes(input))};
}

template <int factor>
ChunkConvertMetrics& ConvertPixelRepeatBase<factor>::GetMetrics(ChunkConvertMetrics& out,
                                                                const ChunkConvertFacility&,
                                                                const ImageRowFormat&) const
{
    return out = {.inputChunks = 1,
                  .outputChunks = factor,
                  .parameterBytes = sizeof(PixelRepeatBlock),
                  .ownRegion = false};
}

template <int factor>
ImageRowFormat& ConvertPixelRepeatBase<factor>::GetOutputFormat(ImageRowFormat& out,
                                                                const ChunkConvertFacility&,
                                                                const ImageRowFormat& input) const
{
    return KeepFormat(out, input);
}

template class ConvertPixelRepeatBase<1>;
template class ConvertPixelRepeatBase<2>;
template class ConvertPixelRepeatBase<4>;

} // namespace zvk::Pelkraft
