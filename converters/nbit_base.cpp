#include "converters/nbit_base.h"

#include "common/units.h"
#include "converters/convert_facility.h"
#include "converters/output_format.h"

namespace zvk::Pelkraft {

template <int depth>
ChunkConvertMetrics& Convert8bitToNbitBase<depth>::GetMetrics(ChunkConvertMetrics& out,
                                                              const ChunkConvertFacility&,
                                                              const ImageRowFormat&) const
{
    return out = {.inputChunks = 8 / depth,
                  .outputChunks = 1,
                  .parameterBytes = 16,
                  .ownRegion = false};
}

template <int depth>
ImageRowFormat& Convert8bitToNbitBase<depth>::GetOutputFormat(ImageRowFormat& out,
                                                              const ChunkConvertFacility&,
                                                              const ImageRowFormat& input) const
{
    // A packed chunk is a chunk of bytes, one per plane and column.
    return SetInterleavedFormat(out, 8, input.channels);
}

template <int depth>
ChunkConvertMetrics& ConvertNbitTo8bitBase<depth>::GetMetrics(ChunkConvertMetrics& out,
                                                              const ChunkConvertFacility&,
                                                              const ImageRowFormat&) const
{
    return out = {.inputChunks = 1,
                  .outputChunks = 8 / depth,
                  .parameterBytes = 16,
                  .ownRegion = false};
}

template <int depth>
ImageRowFormat& ConvertNbitTo8bitBase<depth>::GetOutputFormat(ImageRowFormat& out,
                                                              const ChunkConvertFacility&,
                                                              const ImageRowFormat& input) const
{
    return SetInterleavedFormat(out, 8, input.channels);
}

template class Convert8bitToNbitBase<1>;
template class Convert8bitToNbitBase<2>;
template class ConvertNbitTo8bitBase<1>;
template class ConvertNbitTo8bitBase<2>;

std::uint64_t PackGap(const ImageRowFormat& input, const ChunkStepGeometry& geometry)
{
    return geometry.inputChunkStride * geometry.expansion - SlotAreaBytes(PixelBytes(input));
}

std::uint64_t UnpackStride(const ChunkStepGeometry& geometry)
{
    return geometry.outputChunkStride * geometry.reduction;
}

} // namespace zvk::Pelkraft
