#pragma once

#include "common/image_row_format.h"

#include <cstdint>

namespace zvk::Pelkraft {

struct ChunkConvertFacility;

// A method works on one batch, in place or into the next region. GetConvertMethod has written
// parameters, which is null for a step without a block.
using ConvertMethod = void (*)(void* firstChunkHeader, const void* parameters);

// A step answers with this while the chain is sized.
struct ChunkConvertMetrics
{
    std::uint64_t inputChunks;
    std::uint64_t outputChunks;
    std::uint64_t parameterBytes;
    // True: writes into the next region. False: works in place.
    bool ownRegion;
};

// The chunks that a method will be given lie so. Strides are in bytes, the two others in strides:
// input chunks of an expanding step stand `expansion` apart, output chunks of a reducing one
// `reduction`.
struct ChunkStepGeometry
{
    std::uint64_t expansion;
    std::uint64_t reduction;
    std::uint64_t inputChunkStride;
    std::uint64_t outputChunkStride;
};

// Answers for one kind of step. Stateless: one constant object per class, never freed.
class IChunkConvertDescriptor
{
public:
    virtual ChunkConvertMetrics& GetMetrics(ChunkConvertMetrics& out,
                                            const ChunkConvertFacility& facility,
                                            const ImageRowFormat& input) const = 0;
    // Leaves the widths alone, which only the caller knows.
    virtual ImageRowFormat& GetOutputFormat(ImageRowFormat& out,
                                            const ChunkConvertFacility& facility,
                                            const ImageRowFormat& input) const = 0;
    // parameters has room for parameterBytes, aligned to a unit.
    virtual ConvertMethod GetConvertMethod(const ChunkConvertFacility& facility,
                                           const ImageRowFormat& input,
                                           const ChunkStepGeometry& geometry,
                                           void* parameters) const = 0;

protected:
    ~IChunkConvertDescriptor() = default;
};

} // namespace zvk::Pelkraft
