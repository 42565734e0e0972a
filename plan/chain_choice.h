#pragma once

#include "common/conversion.h"
#include "converters/convert_facility.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvk::Pelkraft {

// A place in a chain. None is a place whose option was not asked for.
enum class ChainStep : std::uint8_t
{
    None,
    Reverse,
    Repeat,
    Remap,
    Unpack,
    Pack,
    Widen,
    Narrow,
};

// Up to five places in order, four bits each, in one number: a record of bytes that is read as
// a whole as soon as it is written makes the processor wait.
class ChainSteps
{
public:
    template <typename... Step>
    static ChainSteps Of(Step... step)
    {
        ChainSteps chain;
        ((chain.places |= static_cast<std::uint32_t>(step) << (4 * chain.length++)), ...);
        return chain;
    }

    std::uint32_t GetLength() const { return length; }
    ChainStep GetStep(std::uint32_t index) const
    {
        return static_cast<ChainStep>(places >> (4 * index) & 15U);
    }

private:
    std::uint32_t places = 0;
    std::uint32_t length = 0;
};

// The way between two formats. Throws
//   "zvk::Pelkraft::Convert only one option is allowed"
//   "zvk::Pelkraft::Convert unsupported conversion to 16 bit"
//   "zvk::Pelkraft::Convert unsupported conversion from 16 bit"
//   "zvk::Pelkraft::Convert unsupported conversion"
// and what Create_Packer and Create_Unpacker throw.
ChainSteps ChooseChain(const FormatPair& formats, const ConversionRequest& request);

bool HasStep(const ChainSteps& chain, ChainStep step);

// The numbers that the steps' records carry.
struct ChainNumbers
{
    std::int32_t sseVersion;
    std::int32_t factor;
    ChannelMap map;
};

// The steps as the portal wants them.
struct ChainFacilities
{
    std::array<ChunkConvertFacility, 5> facilities;
    std::size_t length;
};
ChainFacilities FacilitiesOf(const ChainSteps& chain, const FormatPair& formats,
                             const ChainNumbers& numbers);

} // namespace zvk::Pelkraft
