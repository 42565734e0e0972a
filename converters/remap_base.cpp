#include "converters/remap_base.h"

#include "common/units.h"
#include "converters/convert_facility.h"
#include "converters/output_format.h"

#include <type_traits>

namespace zvk::Pelkraft {
namespace {

template <int units>
std::uint64_t CountMasks(FixedSize<units>, const ChunkConvertFacility&, const ImageRowFormat&)
{
    return std::uint64_t{units} * units;
}

std::uint64_t CountMasks(VariableSize, const ChunkConvertFacility& facility,
                         const ImageRowFormat& input)
{
    return CountRemapOutputUnits(facility, input) * CountUnits(PixelBytes(input));
}

} // namespace

ImageRowFormat& ConvertRemapBase::GetOutputFormat(ImageRowFormat& out,
                                                  const ChunkConvertFacility& facility,
                                                  const ImageRowFormat& input) const
{
    RequireSupportedDepth(input.bits);
    return SetInterleavedFormat(out, input.bits, static_cast<std::int32_t>(facility.remapChannels));
}

template <typename InputPolicy, typename OutputPolicy>
ChunkConvertMetrics&
ConvertRemapInitialized<InputPolicy, OutputPolicy>::GetMetrics(ChunkConvertMetrics& out,
                                                               const ChunkConvertFacility& facility,
                                                               const ImageRowFormat& input) const
{
    static_assert(std::is_same_v<InputPolicy, OutputPolicy>);
    return SetRemapMetrics(out, CountMasks(InputPolicy{}, facility, input) * unitBytes);
}

template class ConvertRemapInitialized<FixedSize<1>, FixedSize<1>>;
template class ConvertRemapInitialized<FixedSize<2>, FixedSize<2>>;
template class ConvertRemapInitialized<VariableSize, VariableSize>;

std::uint64_t CountRemapOutputUnits(const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input)
{
    return CountUnits(static_cast<std::uint64_t>(BytesPerSample(input.bits)) *
                      facility.remapChannels);
}

ChunkConvertMetrics& SetRemapMetrics(ChunkConvertMetrics& out, std::uint64_t parameterBytes)
{
    return out = {.inputChunks = 1,
                  .outputChunks = 1,
                  .parameterBytes = parameterBytes,
                  .ownRegion = true};
}

} // namespace zvk::Pelkraft
