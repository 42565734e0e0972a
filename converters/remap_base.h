#pragma once

#include "common/size_policies.h"
#include "converters/convert_descriptor.h"

#include <cstdint>

namespace zvk::Pelkraft {

// What every member of the remap family answers alike. The output format throws
// "zvk::Pelkraft::ImageRowFormat unsupported bit depth" for a depth that no row can have.
class ConvertRemapBase : public IChunkConvertDescriptor
{
public:
    ImageRowFormat& GetOutputFormat(ImageRowFormat& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~ConvertRemapBase() = default;
};

// What the vector road's members add, by the policies of the input and the output slot: the room
// for a shuffle mask per pair of an output and an input unit.
template <typename InputPolicy, typename OutputPolicy>
class ConvertRemapInitialized : public ConvertRemapBase
{
public:
    ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out, const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input) const override;

protected:
    ~ConvertRemapInitialized() = default;
};

extern template class ConvertRemapInitialized<FixedSize<1>, FixedSize<1>>;
extern template class ConvertRemapInitialized<FixedSize<2>, FixedSize<2>>;
extern template class ConvertRemapInitialized<VariableSize, VariableSize>;

// Units of one slot of the remapped pixels.
std::uint64_t CountRemapOutputUnits(const ChunkConvertFacility& facility,
                                    const ImageRowFormat& input);

// A step with a parameter block of this size.
ChunkConvertMetrics& SetRemapMetrics(ChunkConvertMetrics& out, std::uint64_t parameterBytes);

} // namespace zvk::Pelkraft
